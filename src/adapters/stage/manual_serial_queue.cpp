#include "adapters/stage/manual_serial_queue.h"

namespace plemora {

ManualSerialQueue::~ManualSerialQueue() {
  runAll();
}

void ManualSerialQueue::async(std::function<void()> work) {
  {
    const std::lock_guard lock(mutex_);
    work_.push_back(std::move(work));
  }
  if (isImmediate_) {
    runAll();
  }
}

bool ManualSerialQueue::runNext() {
  std::function<void()> work;
  {
    const std::lock_guard lock(mutex_);
    // Work that submits work, or two threads at once, must not overlap.
    if (isRunning_ || work_.empty()) {
      return false;
    }
    isRunning_ = true;
    work = std::move(work_.front());
    work_.pop_front();
  }
  // Also when the work throws, as the stage does where a program is killed.
  const struct Rest {
    ManualSerialQueue& queue;
    ~Rest() {
      const std::lock_guard lock(queue.mutex_);
      queue.isRunning_ = false;
    }
  } rest{*this};
  work();
  work = nullptr;
  return true;
}

int ManualSerialQueue::runAll() {
  int ran = 0;
  while (runNext()) {
    ++ran;
  }
  return ran;
}

int ManualSerialQueue::pending() const {
  const std::lock_guard lock(mutex_);
  return static_cast<int>(work_.size());
}

void StageQueueFactory::setImmediate(bool isImmediate) {
  const std::lock_guard lock(mutex_);
  isImmediate_ = isImmediate;
}

std::shared_ptr<SerialQueue> StageQueueFactory::makeQueue(const std::string& label) {
  const std::lock_guard lock(mutex_);
  auto queue = std::make_shared<ManualSerialQueue>(label, isImmediate_);
  std::erase_if(queues_, [](const auto& weak) { return weak.expired(); });
  queues_.push_back(queue);
  labels_.push_back(label);
  return queue;
}

std::vector<std::shared_ptr<ManualSerialQueue>> StageQueueFactory::living() const {
  const std::lock_guard lock(mutex_);
  std::vector<std::shared_ptr<ManualSerialQueue>> result;
  for (const auto& weak : queues_) {
    if (auto queue = weak.lock()) {
      result.push_back(std::move(queue));
    }
  }
  return result;
}

std::vector<std::shared_ptr<ManualSerialQueue>> StageQueueFactory::queues(
    const std::string& label) const {
  auto result = living();
  std::erase_if(result, [&](const auto& queue) { return queue->label() != label; });
  return result;
}

std::vector<std::string> StageQueueFactory::labels() const {
  const std::lock_guard lock(mutex_);
  return labels_;
}

bool StageQueueFactory::runNext() {
  for (const auto& queue : living()) {
    if (queue->runNext()) {
      return true;
    }
  }
  return false;
}

int StageQueueFactory::runAll() {
  int ran = 0;
  while (runNext()) {
    ++ran;
  }
  return ran;
}

}  // namespace plemora
