#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "glass/raster.h"

namespace plemora {

/// A running mean over 2 * radius + 1 pixels that count fully and the two next to them that count
/// a fraction each, so that any width can be met. Fixed point, for byte sums less 128 a pixel:
/// mean = (sum * inner + edges * outer + bias) >> shift.
struct BoxFilter {
  int radius = 0;  ///< 0...127
  std::int16_t inner = 0;
  std::int16_t outer = 0;
  int shift = 0;
  std::int32_t bias = 0;
};

/// What is done to each pixel of an opaque picture, on the scale 0...255: a colour matrix, whose
/// result is clamped, and then a wash of plain colours: premultiplied result * keep + wash.
struct PixelTransform {
  float red[4];  ///< times red, green, blue; plus
  float green[4];
  float blue[4];
  float alpha[4];
  float keep = 1;
  float wash[4] = {};  ///< red, green, blue, alpha; premultiplied
};

/// Loops over pixels for one instruction set. Any alignment. All variants agree bit for bit, but
/// transform, which may differ by one level.
struct PixelKernel {
  /// The width of the strips that boxRows works on, in pixels.
  static constexpr int stripWidth = 16;

  const char* name;
  /// Filters a strip of so many rows down its columns; the pixels beyond its ends are those of the
  /// first and of the last row.
  void (*boxRows)(Pixel* dst, const Pixel* src, int rows, const BoxFilter& filter);
  void (*transform)(Pixel* dst, const Pixel* src, std::size_t n, const PixelTransform& transform);
  /// dst = src over dst
  void (*over)(Pixel* dst, const Pixel* src, std::size_t n);
  /// dst *= factor / 255
  void (*scale)(Pixel* dst, std::uint8_t factor, std::size_t n);
  /// dst *= alpha of the mask / 255
  void (*multiply)(Pixel* dst, const Pixel* mask, std::size_t n);
};

/// The variants that this processor can run, the scalar one first, the fastest last.
std::span<const PixelKernel* const> availablePixelKernels();

/// The fastest one.
const PixelKernel& pixelKernel();

/// a * b / 255, rounded to nearest; both 0...255.
inline std::uint32_t multiply255(std::uint32_t a, std::uint32_t b) {
  const std::uint32_t product = a * b + 128;
  return (product + (product >> 8)) >> 8;
}

inline std::uint32_t alphaOf(Pixel pixel) {
  return pixel >> 24;
}

/// All four components times factor / 255.
inline Pixel scaledPixel(Pixel pixel, std::uint32_t factor) {
  return multiply255(pixel & 0xff, factor) | multiply255(pixel >> 8 & 0xff, factor) << 8 |
         multiply255(pixel >> 16 & 0xff, factor) << 16 | multiply255(pixel >> 24, factor) << 24;
}

}  // namespace plemora
