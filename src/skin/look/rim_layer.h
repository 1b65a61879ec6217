#pragma once

#include <memory>

#include "platform/layer.h"

namespace plemora {

/// The thin light rim around a rounded shape: brighter at the top edge, and two hairlines once it
/// is on a screen with two pixels or more to the point. Main thread.
class RimLayer {
 public:
  /// Alphas of the white at the top and below.
  RimLayer(double top, double rest);

  /// The record to show; the same for the rim's whole life, and the owner's to place by zPosition.
  const std::shared_ptr<Layer>& layer() const { return layer_; }

  /// Fits the rim to its shape, in points; the owner then shows the layer again. flipped: y of the
  /// view that hosts it points down. scale: pixels per point. What has once been on a Retina screen
  /// keeps its two hairlines.
  void update(const Size& size, double cornerRadius, bool flipped, double scale);

 private:
  void becomeRetina();

  struct Alphas {
    double top;
    double rest;
  };

  Alphas retina_;
  double scale_ = 0;
  std::shared_ptr<Layer> layer_;
  std::shared_ptr<Layer> gradient_;
  std::shared_ptr<Layer> stroke_;  // the gradient's mask
  std::shared_ptr<Layer> inner_;   // null before the first Retina screen
};

}  // namespace plemora
