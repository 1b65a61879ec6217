#pragma once

#include <vector>

#include "base/geometry.h"
#include "platform/screens.h"

namespace plemora {

/// Where the mixer panel goes. Points, global, y up.
struct PanelPlacement {
  static constexpr double width = 308;
  static constexpr double margin = 8;  ///< to the edges of the screen's visible frame
  static constexpr double gap = 6;     ///< between the anchor and the panel

  Rect frame;
  /// The panel stands on a bar at the bottom of its screen, so it grows upwards.
  bool standsOnAnchor = false;

  /// The screen of an anchor: the first that it touches, else the first of all. Null without any.
  static const Screen* screen(const std::vector<Screen>& screens, const Rect& anchor);

  /// Hangs the panel below the anchor, or stands it on an anchor in the lower half of the screen
  /// below which there is no room; never higher than the room there. Null: no screen to keep to.
  static PanelPlacement place(const Rect& anchor, const Screen* screen, double height);

  /// The height that place() would cut the panel down to at most; 0: any.
  static double room(const Rect& anchor, const Screen* screen);

  bool operator==(const PanelPlacement&) const = default;
};

}  // namespace plemora
