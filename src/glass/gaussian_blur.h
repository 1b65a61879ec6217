#pragma once

#include "glass/pixel_kernel.h"
#include "glass/raster.h"

namespace plemora {

/// A Gaussian blur by three running means each way, whatever the radius at the same cost. Colours
/// and alpha are blurred alike, so the picture must be premultiplied. Any thread.
class GaussianBlur {
 public:
  /// The widest blur, in pixels; wider ones are cut down to it.
  static constexpr double largestSigma = 127;

  /// In pixels. Not a finite number, or too small to be seen: no blur.
  explicit GaussianBlur(double sigma);

  bool isIdentity() const { return reach_ == 0; }
  /// How far a pixel's colour can spread, in pixels.
  int reach() const { return reach_; }

  /// Beyond the picture there is more of its edge.
  void apply(Raster& raster) const { apply(raster, pixelKernel()); }
  void apply(Raster& raster, const PixelKernel& kernel) const;

 private:
  BoxFilter box_;
  int reach_ = 0;
};

}  // namespace plemora
