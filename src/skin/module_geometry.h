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

  Rect track;
  Rect hitArea;  ///< a press in it takes the slider

  static ModuleGeometry of(double moduleWidth, bool isWide, bool isHeadphones) {
    const double inset = isHeadphones ? 37 : 34;
    const double trailing = isWide ? (isHeadphones ? 49 : 77) : 16;
    const double width = std::max(moduleWidth - inset - trailing, shortestTrack);
    ModuleGeometry result;
    result.track = {inset, trackY, width, trackHeight};
    result.hitArea = {10, 28, result.track.maxX() + 20 - 10, 26};
    return result;
  }

  /// The volume that a place across the module stands for, 0...1.
  float fractionAt(double x) const {
    return static_cast<float>(std::clamp((x - track.minX()) / track.width, 0.0, 1.0));
  }
};

}  // namespace plemora
