#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace plemora {

/// One pixel, 0xAARRGGBB, colours multiplied by alpha: the layout of
/// QImage::Format_ARGB32_Premultiplied and of cairo's ARGB32.
using Pixel = std::uint32_t;

/// A rectangle of pixels; x + width and y + height are the first ones outside.
struct PixelRect {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;

  int maxX() const { return x + width; }
  int maxY() const { return y + height; }
  bool isEmpty() const { return width <= 0 || height <= 0; }
  PixelRect intersection(const PixelRect& other) const;
  PixelRect inset(int distance) const {
    return {x + distance, y + distance, width - 2 * distance, height - 2 * distance};
  }

  bool operator==(const PixelRect&) const = default;
};

/// Pixels in memory: rows from the top, without padding. A value; any thread, one at a time.
class Raster {
 public:
  /// The largest width and height; larger ones are cut down to it.
  static constexpr int largestSide = 8192;

  Raster() = default;
  /// Transparent. Sizes below 0 count as 0; with either of them 0 it is empty.
  Raster(int width, int height);

  int width() const { return width_; }
  int height() const { return height_; }
  bool isEmpty() const { return pixels_.empty(); }
  PixelRect bounds() const { return {0, 0, width_, height_}; }
  std::size_t bytesPerLine() const { return static_cast<std::size_t>(width_) * sizeof(Pixel); }

  Pixel* row(int y) { return pixels_.data() + offset(y); }
  const Pixel* row(int y) const { return pixels_.data() + offset(y); }
  Pixel& at(int x, int y) { return row(y)[x]; }
  Pixel at(int x, int y) const { return row(y)[x]; }
  std::span<Pixel> pixels() { return pixels_; }
  std::span<const Pixel> pixels() const { return pixels_; }

  /// Changes the size and makes all of it transparent; keeps the memory where it can.
  void reset(int width, int height);
  void fill(Pixel pixel);

  bool operator==(const Raster&) const = default;

 private:
  std::size_t offset(int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(width_);
  }

  int width_ = 0;
  int height_ = 0;
  std::vector<Pixel> pixels_;
};

}  // namespace plemora
