#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "base/geometry.h"
#include "glass/glass_effect.h"
#include "glass/raster.h"

namespace plemora {

/// An effect of what is below it in the same window. Keeps the blurred picture until what is below
/// is another one. Main thread.
class WindowEffect {
 public:
  /// What the picture below is made of, from the bottom: how often each part has changed so far.
  using Revisions = std::vector<std::uint64_t>;

  explicit WindowEffect(std::shared_ptr<GlassEffect> effect) : effect_(std::move(effect)) {}

  const std::shared_ptr<GlassEffect>& effect() const { return effect_; }

  /// Takes the opaque picture so far and puts the effect over it where its mask lets it be seen.
  /// The origin is where the view's zero point lies on the picture, in points.
  void render(Raster& picture, const PixelRect& part, double scale, Point origin,
              const Revisions& below);

  int blurCount() const { return blurCount_; }

 private:
  struct Key {
    Revisions below;
    PixelRect part;
    double sigma = 0;

    bool operator==(const Key&) const = default;
  };

  std::shared_ptr<GlassEffect> effect_;
  Key key_;  // what blurred_ was made for
  Raster blurred_;
  Raster mask_;
  Raster result_;
  int blurCount_ = 0;
};

}  // namespace plemora
