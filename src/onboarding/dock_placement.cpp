#include "onboarding/dock_placement.h"

#include <algorithm>

namespace plemora {

namespace {

constexpr double gap = 12;        // to what it stands beside
constexpr double edge = 4;        // that must stay free at an edge of the visible area
constexpr double margin = 8;      // that is kept to it
constexpr double sideRaise = 40;  // of a helper beside the window, above the window's bottom
constexpr double beyond = 2000;   // around the window, where there is no screen
constexpr double sidebarShare = 0.32;
constexpr double sidebarMost = 240;
constexpr double aloneShare = 0.12;  // of the visible height, below a helper that stands alone

Rect visibleArea(const Rect& around, const std::vector<Screen>& screens) {
  const auto touched = std::ranges::find_if(
      screens, [&](const Screen& screen) { return screen.frame.intersects(around); });
  if (touched != screens.end()) {
    return touched->visibleFrame;
  }
  return screens.empty() ? around.inset(-beyond, -beyond) : screens.front().visibleFrame;
}

double clampedX(double x, const Rect& visible) {
  return std::min(std::max(x, visible.minX() + margin),
                  visible.maxX() - DockPlacement::width - margin);
}

}  // namespace

DockPlacement DockPlacement::under(const Rect& settings, double height,
                                   const std::vector<Screen>& screens) {
  using Placement = HelperState::Placement;
  const Rect visible = visibleArea(settings, screens);
  const double sidebar = std::min(settings.width * sidebarShare, sidebarMost);
  const double contentMid = settings.minX() + sidebar + (settings.width - sidebar) / 2;
  const double side = std::max(visible.minY() + margin, settings.minY() + sideRaise);
  const double below = settings.minY() - gap - height;

  Placement placement = Placement::under;
  double x = contentMid - width / 2;
  double y = below;
  if (below < visible.minY() + edge) {
    if (settings.maxX() + gap + width <= visible.maxX() - edge) {
      placement = Placement::right;
      x = settings.maxX() + gap;
      y = side;
    } else if (visible.minX() + edge <= settings.minX() - gap - width) {
      placement = Placement::left;
      x = settings.minX() - gap - width;
      y = side;
    } else {
      y = visible.minY() + margin;
    }
  }
  return {placement, {clampedX(x, visible), y, width, height}};
}

Rect DockPlacement::besideControlCenter(const Rect& panel, double height,
                                        const std::vector<Screen>& screens) {
  const Rect visible = visibleArea(panel, screens);
  const bool fitsLeft = panel.minX() - gap - width >= visible.minX() + margin;
  const double x = fitsLeft ? panel.minX() - gap - width : panel.maxX() + gap;
  const double y = std::min(panel.maxY(), visible.maxY() - margin) - height;
  return {clampedX(x, visible), std::max(y, visible.minY() + margin), width, height};
}

Rect DockPlacement::alone(const Rect& origin, double height, const std::vector<Screen>& screens) {
  const Rect visible = visibleArea(origin, screens);
  return {clampedX(visible.midX() - width / 2, visible),
          visible.minY() + visible.height * aloneShare, width, height};
}

}  // namespace plemora
