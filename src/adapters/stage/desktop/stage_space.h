#pragma once

#include "base/geometry.h"
#include "platform/screens.h"

namespace plemora {

/// Turns points and rectangles of the screens (y up from the bottom left corner of the main one)
/// into those of the window server and of accessibility (y down from its top left corner), and
/// back: each is its own inverse. Main thread; the screens outlive it.
class StageSpace {
 public:
  explicit StageSpace(Screens& screens) : screens_(screens) {}

  /// The frame of the main screen, y up; empty while there is none.
  Rect main() const {
    const auto& screens = screens_.screens().get();
    return screens.empty() ? Rect{} : screens.front().frame;
  }

  Rect flipped(const Rect& rect) const {
    return {rect.x, main().maxY() - rect.maxY(), rect.width, rect.height};
  }
  Point flipped(const Point& point) const { return {point.x, main().maxY() - point.y}; }

 private:
  Screens& screens_;
};

}  // namespace plemora
