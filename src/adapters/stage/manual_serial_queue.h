#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "platform/serial_queue.h"

namespace plemora {

/// A serial queue without a thread: its work waits until it is told to run, or runs inside async
/// when the queue is immediate. Work runs on the thread that makes it run.
class ManualSerialQueue : public SerialQueue {
 public:
  ManualSerialQueue(std::string label, bool isImmediate)
      : label_(std::move(label)), isImmediate_(isImmediate) {}
  ~ManualSerialQueue() override;

  void async(std::function<void()> work) override;

  /// Runs the oldest piece; false when there was none.
  bool runNext();
  /// Runs all, also what they submit; returns how many ran.
  int runAll();

  int pending() const;
  const std::string& label() const { return label_; }

 private:
  std::string label_;
  bool isImmediate_;
  mutable std::mutex mutex_;  // guards the rest
  std::deque<std::function<void()>> work_;
  bool isRunning_ = false;
};

/// Makes manual queues and finds them again by their labels. Any thread.
class StageQueueFactory : public SerialQueueFactory {
 public:
  /// Whether the queues made from now on run their work inside async.
  void setImmediate(bool isImmediate);

  std::shared_ptr<SerialQueue> makeQueue(const std::string& label) override;

  /// The living queues of that label, oldest first.
  std::vector<std::shared_ptr<ManualSerialQueue>> queues(const std::string& label) const;
  /// The label of every queue ever made, in order.
  std::vector<std::string> labels() const;

  /// Runs the oldest piece of the oldest queue that has one; false when there is none.
  bool runNext();
  /// Runs everything on all queues until nothing is left; returns how many pieces ran.
  int runAll();

 private:
  std::vector<std::shared_ptr<ManualSerialQueue>> living() const;

  mutable std::mutex mutex_;
  bool isImmediate_ = false;
  std::vector<std::weak_ptr<ManualSerialQueue>> queues_;
  std::vector<std::string> labels_;
};

}  // namespace plemora
