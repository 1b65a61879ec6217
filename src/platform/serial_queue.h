#pragma once

#include <functional>
#include <memory>
#include <string>

namespace plemora {

/// Runs work one piece after the other, in the order of submission, off the main thread.
class SerialQueue {
 public:
  /// Work already submitted is finished first; the destructor waits for it.
  virtual ~SerialQueue() = default;

  /// From any thread; never blocks.
  virtual void async(std::function<void()> work) = 0;
};

class SerialQueueFactory {
 public:
  virtual ~SerialQueueFactory() = default;

  /// A new queue. The label names it in diagnostics. A queue that is given no work costs no thread.
  virtual std::shared_ptr<SerialQueue> makeQueue(const std::string& label) = 0;
};

}  // namespace plemora
