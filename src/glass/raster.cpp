#include "glass/raster.h"

#include <algorithm>

namespace plemora {

PixelRect PixelRect::intersection(const PixelRect& other) const {
  const int left = std::max(x, other.x);
  const int top = std::max(y, other.y);
  const int right = std::min(maxX(), other.maxX());
  const int bottom = std::min(maxY(), other.maxY());
  return right > left && bottom > top ? PixelRect{left, top, right - left, bottom - top}
                                      : PixelRect{};
}

Raster::Raster(int width, int height) {
  reset(width, height);
}

void Raster::reset(int width, int height) {
  width_ = std::clamp(width, 0, largestSide);
  height_ = std::clamp(height, 0, largestSide);
  if (width_ == 0 || height_ == 0) {
    width_ = height_ = 0;
  }
  pixels_.assign(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_), 0);
}

void Raster::fill(Pixel pixel) {
  std::fill(pixels_.begin(), pixels_.end(), pixel);
}

}  // namespace plemora
