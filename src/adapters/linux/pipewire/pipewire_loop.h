#pragma once

#include <pipewire/pipewire.h>

#include <functional>
#include <memory>

namespace plemora {

/// The thread that handles the server's events, its lock, and the context with the real-time
/// data thread. Everything that talks to the server does so with the lock held; handlers of
/// events, timers and files run on the thread with the lock held.
class PipeWireLoop {
 public:
  /// Throws std::runtime_error when the library cannot set itself up.
  PipeWireLoop();
  ~PipeWireLoop();
  PipeWireLoop(const PipeWireLoop&) = delete;
  PipeWireLoop& operator=(const PipeWireLoop&) = delete;

  /// Starts the thread. Until then the owner may set things up without the lock.
  void start();
  /// Ends the thread; from here on no handler runs.
  void stop();

  pw_context* context() const { return context_.get(); }
  pw_loop* loop() const;

  /// Held by whoever touches what belongs to the thread. Recursive.
  class Lock {
   public:
    explicit Lock(const PipeWireLoop& loop);
    ~Lock();
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

   private:
    pw_thread_loop* loop_;
  };

  /// Gives up the lock until wakeWaiters or the time is over. Not on the loop's own thread.
  /// Returns false when the time is over.
  bool wait(double seconds) const;
  void wakeWaiters() const;
  bool isLoopThread() const;

  /// Runs the work on the real-time thread between two cycles and returns when it is done. The
  /// work must be fit for that thread. Lock held.
  template <typename Work>
  void onDataThread(Work work) const {
    runOnDataThread([](void* data) { (*static_cast<Work*>(data))(); }, &work);
  }

 private:
  void runOnDataThread(void (*call)(void*), void* data) const;

  struct Free {
    void operator()(pw_thread_loop* loop) const { pw_thread_loop_destroy(loop); }
    void operator()(pw_context* context) const { pw_context_destroy(context); }
  };
  std::unique_ptr<pw_thread_loop, Free> thread_;
  std::unique_ptr<pw_context, Free> context_;
};

/// A source on the loop: an event that collapses repeated signals into one call, a one-shot
/// timer, or a readable file. Made and destroyed with the lock held or while the thread is not
/// running. The handler may not destroy its own source.
class LoopSource {
 public:
  using Handler = std::function<void()>;

  static LoopSource event(const PipeWireLoop& loop, Handler handler);
  static LoopSource timer(const PipeWireLoop& loop, Handler handler);
  static LoopSource readable(const PipeWireLoop& loop, int fd, Handler handler);

  LoopSource() = default;
  LoopSource(LoopSource&&) noexcept = default;
  LoopSource& operator=(LoopSource&& other) noexcept;
  ~LoopSource();

  /// Events: the handler runs soon, once. Any thread.
  void signal() const;
  /// Timers: the handler runs once, that many seconds from now; a pending one is replaced.
  void arm(double seconds) const;
  void disarm() const;

 private:
  LoopSource(const PipeWireLoop& loop, Handler handler);

  pw_loop* loop_ = nullptr;
  spa_source* source_ = nullptr;
  std::unique_ptr<Handler> handler_;
};

}  // namespace plemora
