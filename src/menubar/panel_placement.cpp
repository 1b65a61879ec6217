#include "menubar/panel_placement.h"

#include <algorithm>

namespace plemora {

const Screen* PanelPlacement::screen(const std::vector<Screen>& screens, const Rect& anchor) {
  const auto touched = std::ranges::find_if(
      screens, [&](const Screen& screen) { return screen.frame.intersects(anchor); });
  if (touched != screens.end()) {
    return &*touched;
  }
  return screens.empty() ? nullptr : &screens.front();
}

PanelPlacement PanelPlacement::place(const Rect& anchor, const Screen* screen, double height) {
  PanelPlacement result;
  double x = anchor.midX() - width / 2;
  if (screen != nullptr) {
    const Rect& visible = screen->visibleFrame;
    x = std::max(x, visible.minX() + margin);
    x = std::min(x, visible.maxX() - width - margin);
    const double below = anchor.minY() - gap - (visible.minY() + margin);
    const double above = visible.maxY() - margin - (anchor.maxY() + gap);
    result.standsOnAnchor = above > below;
    result.room = std::max({above, below, 0.0});
  }
  height = result.fitted(height);
  const double y = result.standsOnAnchor ? anchor.maxY() + gap : anchor.minY() - gap - height;
  result.frame = {x, y, width, height};
  return result;
}

double PanelPlacement::fitted(double height) const {
  return room > 0 ? std::min(height, room) : height;
}

}  // namespace plemora
