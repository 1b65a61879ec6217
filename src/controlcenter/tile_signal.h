#pragma once

#include <functional>
#include <memory>

namespace plemora {

class DarwinNotifications;
class MainQueue;

/// A press of the program's tile in Control Center, as it reaches the running program: a
/// notification without any content. Main thread. There is one for the whole process; the
/// notifications and the queue outlive it, and the queue outlives the notifications too.
class TileSignal {
 public:
  static constexpr const char* name = "com.quorvane.mixer.tile-pressed";

  TileSignal(DarwinNotifications& notifications, MainQueue& queue);
  ~TileSignal();
  TileSignal(const TileSignal&) = delete;
  TileSignal& operator=(const TileSignal&) = delete;

  /// The handler is called on the main queue after every press, until a later call replaces it.
  /// Each call registers with the notifications anew. Once this is gone nothing is called.
  void observe(std::function<void()> handler);

 private:
  struct Slot;

  DarwinNotifications& notifications_;
  MainQueue& queue_;
  const std::shared_ptr<Slot> slot_;
};

}  // namespace plemora
