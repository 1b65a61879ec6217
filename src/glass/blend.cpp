#include "glass/blend.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>
#include <vector>

#include "glass/pixel_kernel.h"

namespace plemora {

namespace {

using Rgb = std::array<double, 3>;

double unit(double value) {
  return std::isfinite(value) ? std::clamp(value, 0.0, 1.0) : 0;
}

Pixel level(double value) {
  return static_cast<Pixel>(std::lround(255 * std::clamp(value, 0.0, 1.0)));
}

Pixel component(Pixel pixel, int shift) {
  return pixel >> shift & 0xff;
}

double luminosity(const Rgb& color) {
  return 0.3 * color[0] + 0.59 * color[1] + 0.11 * color[2];
}

double saturation(const Rgb& color) {
  const auto [low, high] = std::minmax_element(color.begin(), color.end());
  return *high - *low;
}

/// The colour stretched until its saturation is that; black where it has none.
Rgb withSaturation(const Rgb& color, double amount) {
  const auto [low, high] = std::minmax_element(color.begin(), color.end());
  const double range = *high - *low;
  Rgb result{};
  for (std::size_t i = 0; i < result.size(); ++i) {
    result[i] = range > 0 ? (color[i] - *low) * amount / range : 0;
  }
  return result;
}

/// The colour shifted to that luminosity, then drawn towards grey as far as it left 0...1.
Rgb withLuminosity(Rgb color, double amount) {
  const double shift = amount - luminosity(color);
  for (double& value : color) {
    value += shift;
  }
  const double low = *std::min_element(color.begin(), color.end());
  const double high = *std::max_element(color.begin(), color.end());
  for (double& value : color) {
    if (low < 0) {
      value = amount + (value - amount) * amount / (amount - low);
    }
    if (high > 1) {
      value = amount + (value - amount) * (1 - amount) / (high - amount);
    }
  }
  return color;
}

Rgb straight(Pixel pixel) {
  const double alpha = alphaOf(pixel);
  return {component(pixel, 16) / alpha, component(pixel, 8) / alpha, component(pixel, 0) / alpha};
}

Pixel saturationBlended(Pixel backdrop, Pixel source) {
  if (alphaOf(backdrop) == 0 || alphaOf(source) == 0) {
    return source == 0 ? backdrop : source;
  }
  const Rgb below = straight(backdrop);
  const Rgb above = straight(source);
  const Rgb mixed = withLuminosity(withSaturation(below, saturation(above)), luminosity(below));
  const double alphaBelow = alphaOf(backdrop) / 255.0;
  const double alphaAbove = alphaOf(source) / 255.0;
  Pixel result = level(alphaAbove + alphaBelow - alphaAbove * alphaBelow) << 24;
  for (std::size_t i = 0; i < mixed.size(); ++i) {
    const double value = alphaAbove * (1 - alphaBelow) * above[i] +
                         alphaBelow * (1 - alphaAbove) * below[i] +
                         alphaAbove * alphaBelow * mixed[i];
    result |= level(value) << (16 - 8 * static_cast<int>(i));
  }
  return result;
}

}  // namespace

Pixel pixelFor(const Color& color) {
  const double alpha = unit(color.alpha);
  return level(alpha) << 24 | level(unit(color.red) * alpha) << 16 |
         level(unit(color.green) * alpha) << 8 | level(unit(color.blue) * alpha);
}

Pixel blended(Pixel backdrop, Pixel source, BlendMode mode) {
  const auto each = [&](auto&& mix) {
    Pixel result = 0;
    for (int shift = 0; shift < 32; shift += 8) {
      result |= std::min(mix(component(backdrop, shift), component(source, shift)), Pixel{255})
                << shift;
    }
    return result;
  };
  switch (mode) {
    case BlendMode::screen:
      return each([](Pixel b, Pixel s) { return b + s - multiply255(b, s); });
    case BlendMode::plusLighter:
      return each([](Pixel b, Pixel s) { return b + s; });
    case BlendMode::saturation:
      return saturationBlended(backdrop, source);
    case BlendMode::normal:
      break;
  }
  const Pixel rest = 255 - alphaOf(source);
  return each([&](Pixel b, Pixel s) { return s + multiply255(b, rest); });
}

void composite(Raster& target, const Raster& source, int x, int y, std::uint8_t opacity,
               BlendMode mode) {
  const PixelRect shared = target.bounds().intersection({x, y, source.width(), source.height()});
  const auto count = static_cast<std::size_t>(shared.width);
  std::vector<Pixel> faded(opacity < 255 ? count : 0);
  for (int row = shared.y; row < shared.maxY(); ++row) {
    const Pixel* from = source.row(row - y) + (shared.x - x);
    Pixel* to = target.row(row) + shared.x;
    if (opacity < 255) {
      std::copy_n(from, count, faded.begin());
      pixelKernel().scale(faded.data(), opacity, count);
      from = faded.data();
    }
    if (mode == BlendMode::normal) {
      pixelKernel().over(to, from, count);
      continue;
    }
    for (std::size_t i = 0; i < count; ++i) {
      if (from[i] != 0) {
        to[i] = blended(to[i], from[i], mode);
      }
    }
  }
}

}  // namespace plemora
