#include <algorithm>
#include <cmath>

#include "glass/pixel_kernel_variants.h"

namespace plemora {

namespace {

std::uint8_t* bytes(Pixel* pixels) {
  return reinterpret_cast<std::uint8_t*>(pixels);
}

const std::uint8_t* bytes(const Pixel* pixels) {
  return reinterpret_cast<const std::uint8_t*>(pixels);
}

void boxRows(Pixel* dst, const Pixel* src, int rows, const BoxFilter& filter) {
  constexpr std::ptrdiff_t stride = PixelKernel::stripWidth * sizeof(Pixel);
  const int radius = filter.radius;
  for (std::ptrdiff_t column = 0; column < stride; ++column) {
    const auto at = [&](int row) -> int {
      return bytes(src)[std::clamp(row, 0, rows - 1) * stride + column];
    };
    int sum = -128 * (2 * radius + 1);
    for (int row = -radius; row <= radius; ++row) {
      sum += at(row);
    }
    for (int row = 0; row < rows; ++row) {
      const int edges = at(row - radius - 1) + at(row + radius + 1) - 256;
      const int mean = (sum * filter.inner + edges * filter.outer + filter.bias) >> filter.shift;
      bytes(dst)[row * stride + column] = static_cast<std::uint8_t>(std::clamp(mean, 0, 255));
      sum += at(row + radius + 1) - at(row - radius);
    }
  }
}

void transform(Pixel* dst, const Pixel* src, std::size_t n, const PixelTransform& t) {
  for (std::size_t i = 0; i < n; ++i) {
    const auto red = static_cast<float>(src[i] >> 16 & 0xff);
    const auto green = static_cast<float>(src[i] >> 8 & 0xff);
    const auto blue = static_cast<float>(src[i] & 0xff);
    const auto channel = [&](const float* row) {
      return std::clamp(row[0] * red + row[1] * green + row[2] * blue + row[3], 0.0f, 255.0f);
    };
    const float alpha = channel(t.alpha);
    const float keep = alpha * (t.keep / 255.0f);
    const auto level = [](float value) { return static_cast<Pixel>(std::lrintf(value)); };
    dst[i] = level(channel(t.red) * keep + t.wash[0]) << 16 |
             level(channel(t.green) * keep + t.wash[1]) << 8 |
             level(channel(t.blue) * keep + t.wash[2]) | level(alpha * t.keep + t.wash[3]) << 24;
  }
}

Pixel overPixel(Pixel below, Pixel above) {
  const Pixel rest = scaledPixel(below, 255 - alphaOf(above));
  Pixel result = 0;
  for (int shift = 0; shift < 32; shift += 8) {
    result |= std::min((above >> shift & 0xff) + (rest >> shift & 0xff), 255u) << shift;
  }
  return result;
}

void over(Pixel* dst, const Pixel* src, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) {
    dst[i] = overPixel(dst[i], src[i]);
  }
}

void scale(Pixel* dst, std::uint8_t factor, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) {
    dst[i] = scaledPixel(dst[i], factor);
  }
}

void multiply(Pixel* dst, const Pixel* mask, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) {
    dst[i] = scaledPixel(dst[i], alphaOf(mask[i]));
  }
}

}  // namespace

const PixelKernel scalarPixelKernel = {
    .name = "scalar",
    .boxRows = boxRows,
    .transform = transform,
    .over = over,
    .scale = scale,
    .multiply = multiply,
};

}  // namespace plemora
