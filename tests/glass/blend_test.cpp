#include "glass/blend.h"

#include <gmock/gmock.h>

#include <array>
#include <limits>

#include "pictures.h"

namespace plemora {
namespace {

using Rgb = std::array<double, 3>;

struct Straight {
  Rgb color{};
  double alpha = 0;
};

Straight straight(Pixel pixel) {
  const double alpha = component(pixel, 24);
  Straight result;
  result.alpha = alpha / 255;
  for (int i = 0; i < 3 && alpha > 0; ++i) {
    result.color[static_cast<std::size_t>(i)] = component(pixel, 16 - 8 * i) / alpha;
  }
  return result;
}

double lum(const Rgb& c) {
  return 0.3 * c[0] + 0.59 * c[1] + 0.11 * c[2];
}

double sat(const Rgb& c) {
  return std::max({c[0], c[1], c[2]}) - std::min({c[0], c[1], c[2]});
}

/// The non-separable mode as the compositing text writes it down, with its sorting and clipping.
Rgb saturationMix(const Rgb& below, const Rgb& above) {
  Rgb c = below;
  std::array<std::size_t, 3> order{0, 1, 2};
  std::sort(order.begin(), order.end(), [&](auto a, auto b) { return c[a] < c[b]; });
  const auto [low, mid, high] = order;
  if (c[high] > c[low]) {
    c[mid] = (c[mid] - c[low]) * sat(above) / (c[high] - c[low]);
    c[high] = sat(above);
  } else {
    c[mid] = c[high] = 0;
  }
  c[low] = 0;
  const double shift = lum(below) - lum(c);
  for (double& value : c) {
    value += shift;
  }
  const double l = lum(c);
  const double n = std::min({c[0], c[1], c[2]});
  const double x = std::max({c[0], c[1], c[2]});
  for (double& value : c) {
    if (n < 0) {
      value = l + (value - l) * l / (l - n);
    }
    if (x > 1) {
      value = l + (value - l) * (1 - l) / (x - l);
    }
  }
  return c;
}

/// co = as (1 - ab) Cs + as ab B(Cb, Cs) + (1 - as) ab Cb, straight colours, in doubles.
Pixel reference(Pixel backdrop, Pixel source, BlendMode mode) {
  const Straight b = straight(backdrop);
  const Straight s = straight(source);
  if (mode == BlendMode::plusLighter) {
    Pixel sum = 0;
    for (int shift = 0; shift < 32; shift += 8) {
      sum |=
          static_cast<Pixel>(std::min(component(backdrop, shift) + component(source, shift), 255))
          << shift;
    }
    return sum;
  }
  Rgb mix = s.color;
  if (mode == BlendMode::screen) {
    for (std::size_t i = 0; i < 3; ++i) {
      mix[i] = 1 - (1 - b.color[i]) * (1 - s.color[i]);
    }
  } else if (mode == BlendMode::saturation) {
    mix = saturationMix(b.color, s.color);
  }
  const double alpha = s.alpha + b.alpha * (1 - s.alpha);
  Pixel result = static_cast<Pixel>(std::lround(alpha * 255)) << 24;
  for (std::size_t i = 0; i < 3; ++i) {
    const double value = s.alpha * (1 - b.alpha) * s.color[i] + s.alpha * b.alpha * mix[i] +
                         (1 - s.alpha) * b.alpha * b.color[i];
    result |= static_cast<Pixel>(std::lround(value * 255)) << (16 - 8 * i);
  }
  return result;
}

TEST(BlendTest, EachModeIsWithinOneLevelOfItsDefinition) {
  const auto below = randomPixels(4000, 11);
  const auto above = randomPixels(4000, 12);
  for (const BlendMode mode :
       {BlendMode::normal, BlendMode::screen, BlendMode::saturation, BlendMode::plusLighter}) {
    for (std::size_t i = 0; i < below.size(); ++i) {
      const Pixel actual = blended(below[i], above[i], mode);
      ASSERT_LE(difference(actual, reference(below[i], above[i], mode)), 1)
          << std::hex << below[i] << " " << above[i] << " mode " << static_cast<int>(mode);
    }
  }
}

TEST(BlendTest, CompositesWhatLiesOnTheTargetOnly) {
  const Raster source = rasterOf(7, 5, randomPixels(35, 13));
  for (const BlendMode mode : {BlendMode::normal, BlendMode::screen}) {
    for (const auto& [x, y] : {std::pair{0, 0}, {-3, -2}, {6, 8}, {-100, 3}, {9, 9}, {4, -5}}) {
      SCOPED_TRACE(testing::Message() << x << ", " << y);
      const Raster before = rasterOf(9, 9, randomPixels(81, 14));
      Raster target = before;
      composite(target, source, x, y, 128, mode);
      for (int row = 0; row < 9; ++row) {
        for (int column = 0; column < 9; ++column) {
          Pixel expected = before.at(column, row);
          if (source.bounds().intersection({column - x, row - y, 1, 1}).width == 1) {
            const Pixel faded = [&] {
              Pixel pixel = 0;
              for (int shift = 0; shift < 32; shift += 8) {
                pixel |= static_cast<Pixel>(std::lround(
                             component(source.at(column - x, row - y), shift) * 128 / 255.0))
                         << shift;
              }
              return pixel;
            }();
            expected = reference(expected, faded, mode);
          }
          EXPECT_LE(difference(target.at(column, row), expected), 1);
        }
      }
    }
  }
}

TEST(BlendTest, ColoursAreClampedAndPremultiplied) {
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(pixelFor({1, 0.5, 0, 0.5}), 0x80804000U);
  EXPECT_EQ(pixelFor({7, -1, nan, 1}), 0xffff0000U);
  EXPECT_EQ(pixelFor({1, 1, 1, nan}), 0U);
  EXPECT_EQ(pixelFor(Color::white(3)), 0xffffffffU);
}

}  // namespace
}  // namespace plemora
