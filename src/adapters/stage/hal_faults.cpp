#include "adapters/stage/hal_faults.h"

#include <algorithm>

namespace plemora {

void HalFaults::add(HalFault fault) {
  const std::lock_guard lock(mutex_);
  faults_.push_back(std::move(fault));
}

void HalFaults::clear() {
  const std::lock_guard lock(mutex_);
  faults_.clear();
}

int HalFaults::calls(HalCall call, AudioObjectPropertySelector selector) const {
  const std::lock_guard lock(mutex_);
  int sum = 0;
  for (const auto& [key, count] : counts_) {
    if (key.first == call && (selector == 0 || key.second == selector)) {
      sum += count;
    }
  }
  return sum;
}

int HalFaults::allCalls() const {
  const std::lock_guard lock(mutex_);
  int sum = 0;
  for (const auto& [key, count] : counts_) {
    sum += count;
  }
  return sum;
}

std::vector<HalCall> HalFaults::journal() const {
  const std::lock_guard lock(mutex_);
  return journal_;
}

void HalFaults::clearCounts() {
  const std::lock_guard lock(mutex_);
  counts_.clear();
  journal_.clear();
}

HalFaults::Verdict HalFaults::enter(HalCall call, AudioObjectID object,
                                    AudioObjectPropertySelector selector) {
  Verdict verdict;
  std::function<void()> before;
  {
    const std::lock_guard lock(mutex_);
    ++counts_[{call, selector}];
    if (call >= HalCall::createTap) {
      journal_.push_back(call);
    }
    const auto fault = std::ranges::find_if(faults_, [&](const HalFault& candidate) {
      return candidate.call == call &&
             (candidate.selector == 0 || candidate.selector == selector) &&
             (candidate.object == 0 || candidate.object == object);
    });
    if (fault == faults_.end()) {
      return verdict;
    }
    verdict = {fault->yieldsNothing ? noErr : fault->status, fault->yieldsNothing};
    before = fault->before;
    if (fault->times > 0 && --fault->times == 0) {
      faults_.erase(fault);
    }
  }
  if (before) {
    before();
  }
  return verdict;
}

}  // namespace plemora
