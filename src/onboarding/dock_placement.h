#pragma once

#include <vector>

#include "base/geometry.h"
#include "onboarding/helper_state.h"
#include "platform/screens.h"

namespace plemora {

/// Where the docked helper stands. Points, global, y up.
struct DockPlacement {
  static constexpr double width = 468;  ///< of the helper

  HelperState::Placement placement = HelperState::Placement::under;
  Rect frame;

  /// Under the window of System Settings, else beside it, else over its lower part; on the first
  /// screen that the window touches.
  static DockPlacement under(const Rect& settings, double height,
                             const std::vector<Screen>& screens);

  /// Left of Control Center's panel, else right of it, with its top below the menu bar.
  static Rect besideControlCenter(const Rect& panel, double height,
                                  const std::vector<Screen>& screens);

  /// In the middle of the lower part of the screen that the origin is on: for a helper that has
  /// nothing to stand by.
  static Rect alone(const Rect& origin, double height, const std::vector<Screen>& screens);

  bool operator==(const DockPlacement&) const = default;
};

}  // namespace plemora
