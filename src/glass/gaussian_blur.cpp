#include "glass/gaussian_blur.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

namespace plemora {

namespace {

constexpr int passes = 3;
constexpr int width = PixelKernel::stripWidth;
constexpr double invisibleSigma = 0.1;

/// The mean whose variance is a third of sigma squared: variances add up over the passes.
BoxFilter boxFor(double sigma) {
  const double variance = sigma * sigma / passes;
  const auto plainVariance = [](int radius) { return radius * (radius + 1) / 3.0; };
  BoxFilter box;
  while (plainVariance(box.radius + 1) <= variance) {
    ++box.radius;
  }
  const double count = 2.0 * box.radius + 1;
  const double edge = box.radius + 1.0;
  const double fraction =
      (variance - plainVariance(box.radius)) * count / (2 * (edge * edge - variance));
  const double total = count + 2 * fraction;
  // As many bits as the weights have room for.
  while (std::lround(std::ldexp(1 / total, box.shift + 1)) <= INT16_MAX) {
    ++box.shift;
  }
  box.inner = static_cast<std::int16_t>(std::lround(std::ldexp(1 / total, box.shift)));
  box.outer = static_cast<std::int16_t>(std::lround(std::ldexp(fraction / total, box.shift)));
  box.bias = (128 << box.shift) + (1 << (box.shift - 1));
  return box;
}

/// A narrow part of the picture, short enough for the nearest cache, filtered down its columns.
class Strip {
 public:
  Strip(int longestSide, const BoxFilter& box, const PixelKernel& kernel)
      : box_(box),
        kernel_(kernel),
        pixels_(static_cast<std::size_t>(longestSide) * width),
        scratch_(pixels_.size()) {}

  Pixel* row(int y) { return pixels_.data() + static_cast<std::ptrdiff_t>(y) * width; }

  void filter(int rows) {
    for (int pass = 0; pass < passes; ++pass) {
      kernel_.boxRows(scratch_.data(), pixels_.data(), rows, box_);
      pixels_.swap(scratch_);
    }
  }

 private:
  const BoxFilter& box_;
  const PixelKernel& kernel_;
  std::vector<Pixel> pixels_;
  std::vector<Pixel> scratch_;
};

void filterColumns(Raster& raster, Strip& strip) {
  for (int left = 0; left < raster.width(); left += width) {
    const auto bytes =
        static_cast<std::size_t>(std::min(width, raster.width() - left)) * sizeof(Pixel);
    for (int y = 0; y < raster.height(); ++y) {
      std::memcpy(strip.row(y), raster.row(y) + left, bytes);
    }
    strip.filter(raster.height());
    for (int y = 0; y < raster.height(); ++y) {
      std::memcpy(raster.row(y) + left, strip.row(y), bytes);
    }
  }
}

void filterRows(Raster& raster, Strip& strip) {
  for (int top = 0; top < raster.height(); top += width) {
    const int rows = std::min(width, raster.height() - top);
    Pixel* const first = raster.row(top);
    // Column by column: a pixel of each row at a time fills a whole line of the strip.
    for (int x = 0; x < raster.width(); ++x) {
      Pixel* to = strip.row(x);
      for (int y = 0; y < rows; ++y) {
        to[y] = first[y * raster.width() + x];
      }
    }
    strip.filter(raster.width());
    for (int x = 0; x < raster.width(); ++x) {
      const Pixel* from = strip.row(x);
      for (int y = 0; y < rows; ++y) {
        first[y * raster.width() + x] = from[y];
      }
    }
  }
}

}  // namespace

GaussianBlur::GaussianBlur(double sigma) {
  if (std::isfinite(sigma) && sigma >= invisibleSigma) {
    box_ = boxFor(std::min(sigma, largestSigma));
    reach_ = passes * (box_.radius + 1);
  }
}

void GaussianBlur::apply(Raster& raster, const PixelKernel& kernel) const {
  if (isIdentity() || raster.isEmpty()) {
    return;
  }
  Strip strip(std::max(raster.width(), raster.height()), box_, kernel);
  filterRows(raster, strip);
  filterColumns(raster, strip);
}

}  // namespace plemora
