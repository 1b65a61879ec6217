#pragma once

#include <pipewire/thread-loop.h>

namespace plemora::rig {

/// Holds the lock of a pw_thread_loop.
class LoopLock {
 public:
  explicit LoopLock(pw_thread_loop* loop) : loop_(loop) { pw_thread_loop_lock(loop_); }
  ~LoopLock() { pw_thread_loop_unlock(loop_); }
  LoopLock(const LoopLock&) = delete;
  LoopLock& operator=(const LoopLock&) = delete;

 private:
  pw_thread_loop* loop_;
};

}  // namespace plemora::rig
