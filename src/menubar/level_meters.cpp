#include "menubar/level_meters.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace plemora {

LevelMeters::LevelMeters(TapLevels& levels, std::function<void(const Levels&)> changed)
    : tapLevels_(levels), changed_(std::move(changed)) {}

void LevelMeters::start() {
  if (!watch_) {
    watch_ =
        tapLevels_.watch(interval, [this](const std::vector<TapLevel>& levels) { take(levels); });
  }
}

void LevelMeters::stop() {
  watch_.reset();
  lengths_.clear();
}

double LevelMeters::length(float peak) {
  // Written so that a peak that is no number counts as silence.
  if (!(peak > 0)) {
    return 0;
  }
  const double decibels = 20 * std::log10(static_cast<double>(peak));
  return std::clamp(1 - decibels / floorDecibels, 0.0, 1.0);
}

void LevelMeters::take(const std::vector<TapLevel>& levels) {
  constexpr double fall = fallRate * interval / -floorDecibels;
  Levels next;
  for (const TapLevel& level : levels) {
    const auto before = lengths_.find(level.id);
    const double fallen = before == lengths_.end() ? 0 : before->second - fall;
    next.emplace(level.id, std::max({length(level.peak), fallen, 0.0}));
  }
  if (next != lengths_) {
    lengths_ = std::move(next);
    changed_(lengths_);
  }
}

}  // namespace plemora
