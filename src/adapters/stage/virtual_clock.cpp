#include "adapters/stage/virtual_clock.h"

#include <algorithm>
#include <chrono>
#include <cstdio>

namespace plemora {

namespace {

WallTime::duration wallDuration(double seconds) {
  return std::chrono::duration_cast<WallTime::duration>(std::chrono::duration<double>(seconds));
}

}  // namespace

WallTime VirtualClock::now() {
  const std::lock_guard lock(mutex_);
  return start_ + wallDuration(mediaTime_);
}

double VirtualClock::mediaTime() {
  const std::lock_guard lock(mutex_);
  return mediaTime_;
}

std::string VirtualClock::makeUUID() {
  const std::lock_guard lock(mutex_);
  char text[40];
  std::snprintf(text, sizeof text, "00000000-0000-4000-8000-%012llX",
                static_cast<unsigned long long>(++uuids_));
  return text;
}

void VirtualClock::advanceTo(double mediaTime) {
  const std::lock_guard lock(mutex_);
  mediaTime_ = std::max(mediaTime_, mediaTime);
}

void VirtualClock::setNow(WallTime now) {
  const std::lock_guard lock(mutex_);
  start_ = now - wallDuration(mediaTime_);
}

}  // namespace plemora
