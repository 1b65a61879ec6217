#pragma once

#include "base/geometry.h"
#include "glass/raster.h"
#include "platform/layer.h"

namespace plemora {

/// Draws trees of layers over pixels, as Core Animation would show them: siblings by zPosition; of
/// a layer, from the bottom, background colour, content, sublayers; then, of the result as a
/// whole, corner clip, mask, feathering, opacity and blend mode.
///
/// Numbers that are not finite count as 0, opacities and colours are clamped to 0...1, a layer with
/// an empty frame draws only its shape and its sublayers. What lies deeper than 64 layers, or is
/// its own ancestor, is left out. Main thread.
class LayerRenderer {
 public:
  /// Pixels per point; what is not a number above 0 counts as 1, above 16 as 16.
  explicit LayerRenderer(double scale);

  double scale() const { return scale_; }

  /// Draws the layer and everything in it over the target. The origin is where the zero point of
  /// the layer's frame lies on the target, in points, y down.
  void render(const Layer& layer, Raster& target, Point origin = {}) const;

 private:
  double scale_;
};

}  // namespace plemora
