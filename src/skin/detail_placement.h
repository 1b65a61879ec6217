#pragma once

#include "base/geometry.h"
#include "menubar/panel_placement.h"
#include "platform/screens.h"

namespace plemora {

/// Where the detail panel of a module goes. Points, global, y up. A null screen: none to keep to.
struct DetailPlacement {
  static constexpr double width = PanelPlacement::width;
  static constexpr double margin = PanelPlacement::margin;  ///< to the screen's visible frame

  /// The most height that a panel has on that screen; 0: any.
  static double room(const Screen* screen);

  /// The panel's top edge is the module's, and so is the side that is nearer to the edge of the
  /// screen: it grows down and towards the middle. It moves only as far as it must to fit.
  static Rect panelFrame(const Rect& module, const Screen* screen, double height);

  /// The panel in another height: its top edge stays as long as there is room below.
  static Rect resized(const Rect& panel, const Screen* screen, double height);
};

}  // namespace plemora
