#include "skin/seam_shapes.h"

#include <algorithm>

namespace plemora {

namespace {

constexpr double overhang = 16;  // points, of the seam beyond the module

}  // namespace

SeamShapes::SeamShapes(const Size& module, const std::vector<Rect>& pills, double cornerRadius)
    : module_(module), radius_(std::min(cornerRadius, module.height / 2)) {
  if (pills.size() < 2) {
    return;
  }
  // A tile may stand a fraction of a point lower than its neighbour; the seam does not tell.
  left_ = {pills[0].x, 0, pills[0].width, module.height};
  right_ = {pills[1].x, 0, pills[1].width, module.height};
  // Frames of other processes are sums of fractions.
  constexpr double slack = 0.5;
  hasSeam_ = left_.maxX() <= right_.minX() + slack && right_.maxX() <= module.width + slack;
  const double end = std::min(right_.maxX(), module.width);
  right_.x = std::max(right_.x, left_.maxX());
  right_.width = std::max(end - right_.x, 0.0);
}

double SeamShapes::clamped(double dilation) const {
  const double gap = right_.minX() - left_.maxX();
  return std::clamp(dilation, -gap / 2, std::min(left_.width, right_.width) / 2);
}

std::vector<RoundedRect> SeamShapes::seam(double dilation) const {
  if (!hasSeam_) {
    return {};
  }
  const double moved = clamped(dilation);
  // It goes on beyond both ends, so that a feather does not thin it out there.
  const double width = right_.minX() - left_.maxX() + radius_;
  const double start = left_.maxX() - radius_ / 2;
  // The tiles' outer corners are the module's and cancel them out.
  return {{{0, 0, module_.width, module_.height}, radius_, true},
          {{left_.x, 0, left_.width - moved, module_.height}, radius_, true},
          {{right_.x + moved, 0, right_.width - moved, module_.height}, radius_, true},
          {{start, -overhang, width, overhang}, 0, false},
          {{start, module_.height, width, overhang}, 0, false}};
}

std::vector<RoundedRect> SeamShapes::caps(double dilation) const {
  auto path = seam(dilation);
  const double height = radius_;
  if (hasSeam_ && 2 * height < module_.height) {
    const double moved = clamped(dilation);
    const double start = left_.maxX() - moved;
    // What is between the ends is there twice, and so not at all.
    path.push_back(
        {{start, height, right_.minX() + moved - start, module_.height - 2 * height}, 0, false});
  }
  return path;
}

std::vector<RoundedRect> SeamShapes::edges() const {
  if (!hasSeam_) {
    return {};
  }
  return {{left_, radius_, true}, {right_, radius_, true}};
}

}  // namespace plemora
