#pragma once

#include <vector>

#include "base/geometry.h"
#include "base/published.h"

namespace plemora {

/// One display. Rectangles in points of the global space: y up, origin at the bottom left corner of
/// the first screen.
struct Screen {
  int id = 0;
  Rect frame;
  Rect visibleFrame;  ///< without the menu bar, docks and panels
  double scale = 1;   ///< pixels per point
  double refreshRate = 60;

  bool operator==(const Screen&) const = default;
};

/// The displays, the one with the menu bar (or the primary one) first; empty while there is none.
/// Main thread.
class Screens {
 public:
  virtual ~Screens() = default;

  virtual const Published<std::vector<Screen>>& screens() = 0;
  [[nodiscard]] virtual Subscription observe(
      std::function<void(const std::vector<Screen>&)> observer) = 0;
};

}  // namespace plemora
