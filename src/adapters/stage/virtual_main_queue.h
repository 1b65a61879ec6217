#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

#include "adapters/stage/virtual_clock.h"
#include "platform/main_queue.h"

namespace plemora {

/// A main queue without a thread: work runs when its owner says so, on the calling thread, and
/// timers by the virtual clock. Everything but async is for that one thread.
class VirtualMainQueue : public MainQueue {
 public:
  explicit VirtualMainQueue(VirtualClock& clock) : clock_(clock) {}
  ~VirtualMainQueue() override;

  void async(std::function<void()> work) override;
  [[nodiscard]] Timer after(double seconds, std::function<void()> work) override;
  [[nodiscard]] Timer every(double seconds, std::function<void()> work) override;

  /// Runs what was submitted with async, also what that work submits, and returns how many
  /// pieces ran. Time stands still.
  int drain();

  /// Drains, then lets that many seconds pass, running timers at their times and draining after
  /// each. Not from inside work.
  void advance(double seconds);

  /// Timers still to run, to find forgotten ones.
  int pendingTimers() const;

  /// The media time at which the next of them is due, for whoever lets real time pass; none: there
  /// is no timer.
  std::optional<double> nextTimer() const;

 private:
  struct Item;
  class Handle;
  using Due = std::pair<double, std::uint64_t>;  // media time, then order of submission

  Timer schedule(double seconds, double interval, std::function<void()> work);
  void run(const std::shared_ptr<Item>& item);

  VirtualClock& clock_;
  std::mutex mutex_;  // guards submitted_
  std::deque<std::function<void()>> submitted_;
  std::map<Due, std::shared_ptr<Item>> timers_;
  std::uint64_t nextSequence_ = 0;
};

}  // namespace plemora
