#include "glass/window_effect.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

#include "glass/blend.h"
#include "glass/gaussian_blur.h"
#include "glass/layer_renderer.h"
#include "glass/look_transform.h"
#include "glass/outline.h"
#include "glass/pixel_kernel.h"

namespace plemora {

namespace {

/// The smallest rectangle that holds all that is not transparent.
PixelRect seenOf(const Raster& raster) {
  PixelRect seen{raster.width(), raster.height(), 0, 0};
  int right = 0;
  for (int y = 0; y < raster.height(); ++y) {
    const Pixel* begin = raster.row(y);
    const Pixel* end = begin + raster.width();
    const Pixel* first = std::find_if(begin, end, [](Pixel pixel) { return alphaOf(pixel) > 0; });
    if (first == end) {
      continue;
    }
    while (alphaOf(end[-1]) == 0) {
      --end;
    }
    seen.x = std::min(seen.x, static_cast<int>(first - begin));
    right = std::max(right, static_cast<int>(end - begin));
    seen.y = std::min(seen.y, y);
    seen.height = y + 1 - seen.y;
  }
  seen.width = right - seen.x;
  return seen.isEmpty() ? PixelRect{} : seen;
}

void copyPart(const Raster& from, const PixelRect& part, Raster& to) {
  if (to.width() != part.width || to.height() != part.height) {
    to.reset(part.width, part.height);
  }
  for (int y = 0; y < part.height; ++y) {
    std::copy_n(from.row(part.y + y) + part.x, part.width, to.row(y));
  }
}

}  // namespace

void WindowEffect::render(Raster& picture, const PixelRect& part, double scale, Point origin,
                          const Revisions& below) {
  const GlassLook look = effect_->look();
  PixelRect shown = part.intersection(picture.bounds());
  if (effect_->mask()) {
    mask_.reset(picture.width(), picture.height());
    LayerRenderer(scale).render(*effect_->mask(), mask_, origin);
    shown = shown.intersection(seenOf(mask_));
  }
  if (shown.isEmpty()) {
    return;
  }
  const GaussianBlur blur(look.blurRadius * scale);
  const Key key{below, shown, look.blurRadius * scale};
  const PixelRect seen =
      shown.inset(-blur.reach()).intersection(part).intersection(picture.bounds());
  if (key != key_) {
    copyPart(picture, seen, blurred_);
    blur.apply(blurred_);
    key_ = key;
    ++blurCount_;
  }
  result_.reset(shown.width, shown.height);
  const PixelTransform transform = lookTransform(look.matrix, look.washes);
  const auto width = static_cast<std::size_t>(shown.width);
  for (int y = 0; y < shown.height; ++y) {
    pixelKernel().transform(result_.row(y), blurred_.row(y + shown.y - seen.y) + shown.x - seen.x,
                            width, transform);
    if (effect_->mask()) {
      pixelKernel().multiply(result_.row(y), mask_.row(y + shown.y) + shown.x, width);
    }
  }
  composite(picture, result_, shown.x, shown.y, 255, BlendMode::normal);
}

}  // namespace plemora
