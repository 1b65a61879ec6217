#include "adapters/stage/virtual_main_queue.h"

#include <algorithm>
#include <cassert>

namespace plemora {

struct VirtualMainQueue::Item {
  double due = 0;
  double interval = 0;  // 0 = once
  std::function<void()> work;
  bool isCancelled = false;
  bool isRunning = false;
};

class VirtualMainQueue::Handle : public ScheduledWork {
 public:
  explicit Handle(std::shared_ptr<Item> item) : item_(std::move(item)) {}
  ~Handle() override {
    item_->isCancelled = true;
    // What the work holds is let go at once, unless the work is what drops this handle.
    if (!item_->isRunning) {
      item_->work = nullptr;
    }
  }

 private:
  std::shared_ptr<Item> item_;
};

VirtualMainQueue::~VirtualMainQueue() = default;

void VirtualMainQueue::async(std::function<void()> work) {
  const std::lock_guard lock(mutex_);
  submitted_.push_back(std::move(work));
}

Timer VirtualMainQueue::after(double seconds, std::function<void()> work) {
  return schedule(seconds, 0, std::move(work));
}

Timer VirtualMainQueue::every(double seconds, std::function<void()> work) {
  assert(seconds > 0);
  return schedule(seconds, seconds, std::move(work));
}

Timer VirtualMainQueue::schedule(double seconds, double interval, std::function<void()> work) {
  auto item = std::make_shared<Item>();
  item->due = clock_.mediaTime() + seconds;
  item->interval = interval;
  item->work = std::move(work);
  timers_.emplace(Due{item->due, nextSequence_++}, item);
  return std::make_unique<Handle>(std::move(item));
}

int VirtualMainQueue::drain() {
  int ran = 0;
  for (;; ++ran) {
    std::function<void()> work;
    {
      const std::lock_guard lock(mutex_);
      if (submitted_.empty()) {
        return ran;
      }
      work = std::move(submitted_.front());
      submitted_.pop_front();
    }
    work();
  }
}

void VirtualMainQueue::advance(double seconds) {
  const double end = clock_.mediaTime() + seconds;
  drain();
  while (!timers_.empty() && timers_.begin()->first.first <= end) {
    const auto item = timers_.extract(timers_.begin()).mapped();
    if (item->isCancelled) {
      continue;
    }
    clock_.advanceTo(item->due);
    run(item);
    drain();
  }
  clock_.advanceTo(end);
}

void VirtualMainQueue::run(const std::shared_ptr<Item>& item) {
  item->isRunning = true;
  item->work();
  item->isRunning = false;
  if (item->isCancelled || item->interval == 0) {
    item->work = nullptr;
    return;
  }
  item->due += item->interval;
  timers_.emplace(Due{item->due, nextSequence_++}, item);
}

int VirtualMainQueue::pendingTimers() const {
  int pending = 0;
  for (const auto& [due, item] : timers_) {
    pending += item->isCancelled ? 0 : 1;
  }
  return pending;
}

std::optional<double> VirtualMainQueue::nextTimer() const {
  const auto next = std::find_if(timers_.begin(), timers_.end(),
                                 [](const auto& timer) { return !timer.second->isCancelled; });
  return next != timers_.end() ? std::optional(next->first.first) : std::nullopt;
}

}  // namespace plemora
