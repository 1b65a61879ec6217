#pragma once

#include <functional>
#include <list>

#include "platform/main_queue.h"

namespace plemora {

/// Work put off on the main queue that nobody waits for: it runs at its time, or never once this is
/// gone. Main thread; the queue outlives it. The work may destroy this.
class DelayedWork {
 public:
  explicit DelayedWork(MainQueue& queue) : queue_(queue) {}
  DelayedWork(const DelayedWork&) = delete;
  DelayedWork& operator=(const DelayedWork&) = delete;

  /// Runs the work once, that many seconds from now.
  void after(double seconds, std::function<void()> work);

 private:
  MainQueue& queue_;
  std::list<Timer> timers_;
};

}  // namespace plemora
