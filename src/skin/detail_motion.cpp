#include "skin/detail_motion.h"

#include <algorithm>
#include <cmath>

namespace plemora {

namespace {

// Seconds.
constexpr double expandDelay = 0.045;
constexpr double expandTime = 0.048;
constexpr double collapseTime = 0.06;
constexpr double resizeTime = 0.05;
constexpr double fadeTime = 0.23;

double approach(double elapsed, double time) {
  return 1 - std::exp(-std::max(elapsed, 0.0) / time);
}

double unit(double value) {
  return std::clamp(value, 0.0, 1.0);
}

}  // namespace

double DetailMotion::expanding(double elapsed) {
  return approach(elapsed - expandDelay, expandTime);
}

double DetailMotion::collapsing(double elapsed) {
  return approach(elapsed, collapseTime);
}

double DetailMotion::resizing(double elapsed) {
  return approach(elapsed, resizeTime);
}

double DetailMotion::fadingAlpha(double elapsed) {
  return std::max(1 - elapsed / fadeTime, 0.0);
}

double DetailMotion::moduleAlpha(double progress) {
  return std::signbit(progress) ? unit((-0.03 - progress) / 0.1)
                                : std::max(1 - progress / 0.08, 0.0);
}

double DetailMotion::detailAlpha(double progress) {
  return std::signbit(progress) ? std::max(progress / 0.08 + 1, 0.0)
                                : unit((progress - 0.02) / 0.1);
}

double DetailMotion::grown(double progress) {
  return unit(std::signbit(progress) ? 1 + progress : progress);
}

}  // namespace plemora
