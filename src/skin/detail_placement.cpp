#include "skin/detail_placement.h"

#include <algorithm>

#include "menubar/layout_helpers.h"

namespace plemora {

double DetailPlacement::room(const Screen* screen) {
  return screen == nullptr ? 0 : std::max(0.0, screen->visibleFrame.height - 2 * margin);
}

Rect DetailPlacement::panelFrame(const Rect& module, const Screen* screen, double height) {
  Rect top{module.minX(), module.maxY(), width, 0};
  if (screen != nullptr) {
    if (module.midX() > screen->frame.midX()) {
      top.x = module.maxX() - width;
    }
    const Rect visible = screen->visibleFrame.inset(margin, margin);
    top.x = std::min(top.x, visible.maxX() - width);
    top.x = std::max(top.x, visible.minX());
  }
  return resized(top, screen, height);
}

Rect DetailPlacement::resized(const Rect& panel, const Screen* screen, double height) {
  if (screen == nullptr) {
    return PinTop::frame(panel, height);
  }
  const Rect visible = screen->visibleFrame.inset(margin, margin);
  Rect frame = PinTop::frame(panel, std::min(height, room(screen)));
  frame.y = std::max(frame.y, visible.minY());
  frame.y = std::min(frame.y, visible.maxY() - frame.height);
  return frame;
}

}  // namespace plemora
