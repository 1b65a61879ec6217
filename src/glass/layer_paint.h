#pragma once

#include <memory>
#include <vector>

#include "base/geometry.h"
#include "glass/coverage.h"
#include "glass/raster.h"
#include "platform/layer.h"

namespace plemora {

/// Where the colour of each pixel comes from: one colour, a gradient or an image over a rectangle.
class Paint {
 public:
  virtual ~Paint() = default;

  /// The colours of pixels beside each other, from (x, y) on.
  virtual void fill(Pixel* pixels, int count, int x, int y) const = 0;
};

std::unique_ptr<Paint> makeSolid(const Color& color);
/// Bounds in pixels. Null when there is nothing to be seen: no colours; no pixels, or too few.
std::unique_ptr<Paint> makeGradient(const GradientContent& content, const Rect& bounds);
std::unique_ptr<Paint> makeImage(const ImageContent& content, const Rect& bounds);

/// Paints over the target where the spans are. opacity: 0...255.
void paint(Raster& target, const std::vector<CoverageSpan>& spans, const Paint& source,
           std::uint8_t opacity);

}  // namespace plemora
