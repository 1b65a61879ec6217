#pragma once

#include <functional>
#include <memory>

namespace plemora {

/// Work scheduled on the main queue. Dropping it cancels what has not run yet, also from inside
/// the work itself. Main thread only; it may outlive the queue.
class ScheduledWork {
 public:
  virtual ~ScheduledWork() = default;
};

using Timer = std::unique_ptr<ScheduledWork>;

/// The run loop of the main thread.
class MainQueue {
 public:
  virtual ~MainQueue() = default;

  /// Runs the work on the main thread, after what was submitted before it. From any thread.
  virtual void async(std::function<void()> work) = 0;

  /// Runs the work once, that many seconds from now. Main thread.
  [[nodiscard]] virtual Timer after(double seconds, std::function<void()> work) = 0;

  /// Runs the work every so many seconds (above 0), first one interval from now. Main thread.
  [[nodiscard]] virtual Timer every(double seconds, std::function<void()> work) = 0;
};

}  // namespace plemora
