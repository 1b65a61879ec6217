#pragma once

#include <vector>

#include "base/geometry.h"

namespace plemora {

/// The module that tiles make up: the first of them, or the first two when they stand side by side
/// on one row. In the global space, y up. Frames in points, y down from the top left corner of the
/// primary screen, sorted from left to right, at least one.
Rect moduleRect(const std::vector<Rect>& frames, const Rect& primaryScreen);

/// Where each tile lies across the module, as high as it is: points of the module, y down.
std::vector<Rect> pillsOf(const std::vector<Rect>& frames, const Rect& moduleFrame);

/// Whether a module of that width has two tiles' worth of room.
inline bool isWideModule(const Rect& moduleFrame) {
  return moduleFrame.width > 200.0;
}

}  // namespace plemora
