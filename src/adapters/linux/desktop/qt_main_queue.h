#pragma once

#include <functional>
#include <memory>
#include <set>

#include "platform/main_queue.h"

namespace plemora {

/// The main queue on Qt's event loop. Made on the main thread once a QCoreApplication exists, and
/// destroyed there before it goes, unless it rests meanwhile. Work submitted from other threads
/// wakes the loop; nothing else does. Work that has not run when the queue goes is dropped.
class QtMainQueue : public MainQueue {
 public:
  QtMainQueue();
  ~QtMainQueue() override;

  void async(std::function<void()> work) override;

  /// Timers below a second are precise to a millisecond; longer ones may be moved by 5 % so that
  /// wake-ups of the machine fall together.
  [[nodiscard]] Timer after(double seconds, std::function<void()> work) override;
  [[nodiscard]] Timer every(double seconds, std::function<void()> work) override;

  /// Between the two calls one QCoreApplication may make way for another: timers stand still, work
  /// that is submitted waits.
  void rest();
  void resume();

 private:
  class Receiver;
  class Work;
  std::unique_ptr<Receiver> receiver_;
  std::shared_ptr<std::set<Work*>> scheduled_ = std::make_shared<std::set<Work*>>();
};

}  // namespace plemora
