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
  /// The bar is at the bottom of its screen: the panel stands on it and grows upwards.
  bool standsOnAnchor = false;
  /// The most height that there is; 0: any.
  double room = 0;

  /// The height of a panel that wants so much.
  double fitted(double height) const;

  /// The screen of an anchor: the first that it touches, else the first of all. Null without any.
  static const Screen* screen(const std::vector<Screen>& screens, const Rect& anchor);

  /// Hangs the panel below the anchor, or stands it on one that has more room above. Null: there
  /// is no screen to keep to.
  static PanelPlacement place(const Rect& anchor, const Screen* screen, double height);

  bool operator==(const PanelPlacement&) const = default;
};

}  // namespace plemora
