#pragma once

#include <algorithm>

#include "base/geometry.h"

namespace plemora {

/// Where the volume track of the module lies: one answer for who draws it, who looks whether the
/// pointer is on it, and who turns a place on it into a volume. Points of the module, y down.
struct ModuleGeometry {
  static constexpr double trackY = 40;
  static constexpr double trackHeight = 4;
  static constexpr double shortestTrack = 20;

  double inset = 0;     ///< left of the track
  double trailing = 0;  ///< right of it, in a module that is wide enough
  Rect track;
  Rect hitArea;  ///< a press in it takes the slider

  static ModuleGeometry of(double moduleWidth, bool isWide, bool isHeadphones) {
    ModuleGeometry result;
    result.inset = isHeadphones ? 37 : 34;
    result.trailing = isWide ? (isHeadphones ? 49 : 77) : 16;
    const double width = std::max(moduleWidth - result.inset - result.trailing, shortestTrack);
    result.track = {result.inset, trackY, width, trackHeight};
    result.hitArea = {10, 28, result.track.maxX() + 20 - 10, 26};
    return result;
  }

  /// The volume that a place across the module stands for, 0...1.
  float fractionAt(double x) const {
    return static_cast<float>(std::clamp((x - track.minX()) / track.width, 0.0, 1.0));
  }
};

}  // namespace plemora
