#include "skin/module_rect.h"

#include <algorithm>
#include <cmath>

namespace plemora {

namespace {

constexpr double rowTolerance = 2.0;  // points, by which tiles of one row may differ
constexpr double widestGap = 20.0;    // points between two tiles of one module, exclusive

bool areNeighbours(const Rect& first, const Rect& second) {
  return std::abs(second.minY() - first.minY()) < rowTolerance &&
         std::abs(second.height - first.height) < rowTolerance &&
         second.minX() - first.maxX() < widestGap;
}

Rect united(const Rect& a, const Rect& b) {
  const double left = std::min(a.minX(), b.minX());
  const double top = std::min(a.minY(), b.minY());
  return {left, top, std::max(a.maxX(), b.maxX()) - left, std::max(a.maxY(), b.maxY()) - top};
}

}  // namespace

Rect moduleRect(const std::vector<Rect>& frames, const Rect& primaryScreen) {
  Rect rect = frames.front();
  if (frames.size() > 1 && areNeighbours(rect, frames[1])) {
    rect = united(rect, frames[1]);
  }
  return {rect.x, primaryScreen.maxY() - rect.maxY(), rect.width, rect.height};
}

std::vector<Rect> pillsOf(const std::vector<Rect>& frames, const Rect& moduleFrame) {
  std::vector<Rect> pills;
  pills.reserve(frames.size());
  for (const Rect& frame : frames) {
    pills.push_back({frame.minX() - moduleFrame.minX(), 0, frame.width, frame.height});
  }
  return pills;
}

}  // namespace plemora
