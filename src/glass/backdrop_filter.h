#pragma once

#include "base/geometry.h"
#include "glass/glass_look.h"
#include "glass/raster.h"
#include "platform/backdrop_source.h"

namespace plemora {

/// Turns what lies behind a view into its background. Keeps the blurred picture: only another
/// backdrop, place, size, scale or blur costs a blur. Main thread.
class BackdropFilter {
 public:
  /// What lies behind and the rectangle, in points of the view (y down), that it covers. An image
  /// without pixels, or with fewer than it says, counts as none.
  void setBackdrop(BackdropImage image, const Rect& covers);
  bool hasBackdrop() const { return !image_.isEmpty(); }

  /// How far beyond the bounds the look samples, in points: its margin, or less where the blur
  /// does not reach as far.
  static double reach(const GlassLook& look, double scale);

  /// Fills that part of the target, which is the view at that scale, with its background. Nothing
  /// happens without a backdrop.
  void render(const GlassLook& look, double scale, const PixelRect& part, Raster& target);
  /// All of it.
  void render(const GlassLook& look, double scale, Raster& target) {
    render(look, scale, target.bounds(), target);
  }

  /// As if there had never been a backdrop.
  void forgetPixels();

  int blurCount() const { return blurCount_; }

 private:
  struct Key {
    int width = 0;
    int height = 0;
    int margin = 0;
    double scale = 0;
    double sigma = 0;

    bool operator==(const Key&) const = default;
  };

  void blur(const Key& key);
  /// Fills the raster with the backdrop from that point of the view on, in pixels at that scale.
  void cut(Raster& raster, int x, int y, double scale) const;
  Color mean() const;

  BackdropImage image_;
  Rect covers_;
  Color mean_;
  Key key_;  // what blurred_ was made for; empty when it is of no use
  Raster blurred_;
  int blurCount_ = 0;
};

}  // namespace plemora
