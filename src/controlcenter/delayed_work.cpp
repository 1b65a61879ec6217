#include "controlcenter/delayed_work.h"

#include <utility>

namespace plemora {

void DelayedWork::after(double seconds, std::function<void()> work) {
  const auto place = timers_.emplace(timers_.end());
  *place = queue_.after(seconds, [this, place, work = std::move(work)] {
    // The work may take all of this away: nothing of this is touched after it.
    const Timer self = std::move(*place);
    timers_.erase(place);
    work();
  });
}

}  // namespace plemora
