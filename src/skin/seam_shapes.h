#pragma once

#include <vector>

#include "base/geometry.h"
#include "platform/layer.h"

namespace plemora {

/// Where a module made of two tiles shows that it is: the shapes to draw there. Points of the
/// module, y down. All of them are empty where there are no two tiles side by side.
class SeamShapes {
 public:
  /// The tiles' rectangles from left to right, and the radius of their corners.
  SeamShapes(const Size& module, const std::vector<Rect>& pills, double cornerRadius);

  /// The gap between the tiles with the wedges that their facing corners leave open; each tile's
  /// edge is moved that far into the tile, or out of it. It goes on above and below the module,
  /// which is not meant to be seen. Even-odd.
  std::vector<RoundedRect> seam(double dilation) const;
  /// Its two ends alone, as high as the corners are. Likewise.
  std::vector<RoundedRect> caps(double dilation) const;
  /// The outlines of both tiles, to be stroked.
  std::vector<RoundedRect> edges() const;

 private:
  double clamped(double dilation) const;

  bool hasSeam_ = false;
  Size module_;
  Rect left_;
  Rect right_;
  double radius_ = 0;
};

}  // namespace plemora
