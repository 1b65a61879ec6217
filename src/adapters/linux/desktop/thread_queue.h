#pragma once

#include <memory>
#include <string>

#include "platform/serial_queue.h"

namespace plemora {

/// Serial queues, each on a thread of its own that starts with the queue's first work and ends
/// with the queue. The thread bears the end of the label (the kernel keeps 15 characters).
class ThreadQueueFactory : public SerialQueueFactory {
 public:
  std::shared_ptr<SerialQueue> makeQueue(const std::string& label) override;
};

}  // namespace plemora
