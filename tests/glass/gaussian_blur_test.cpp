#include "glass/gaussian_blur.h"

#include <gmock/gmock.h>

#include <limits>

#include "pictures.h"

namespace plemora {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

/// Edges of all directions, a gradient, and noise.
Raster testPicture(int width, int height) {
  Raster raster =
      rasterOf(width, height, randomPixels(static_cast<std::size_t>(width * height), 7, true));
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      if (x < width / 2) {
        raster.at(x, y) = (x * x + y * y < 900) != (x + y < 40) ? 0xffff8000 : 0xff000000;
      } else if (y < height / 3) {
        raster.at(x, y) = 0xff000000 | static_cast<Pixel>(x * 255 / width) * 0x010101;
      }
    }
  }
  return raster;
}

struct Accuracy {
  double sigma;
  double mean;
  double worst;
};

TEST(GaussianBlurTest, IsCloseToAGaussian) {
  // Levels of 255. Three boxes are furthest from a Gaussian, in its tails, while they are narrow.
  const Accuracy cases[] = {{0.5, 0.9, 14}, {1, 0.9, 10}, {2, 0.8, 9}, {2.5, 0.8, 9},
                            {6, 0.8, 8},    {20, 0.8, 7}, {40, 0.8, 6}};
  for (const Accuracy& c : cases) {
    SCOPED_TRACE(c.sigma);
    // At the border boxes and Gaussians differ in what they take to lie beyond.
    const int border = static_cast<int>(std::ceil(3 * c.sigma));
    const Raster source = testPicture(70 + 2 * border, 50 + 2 * border);
    Raster blurred = source;
    GaussianBlur(c.sigma).apply(blurred);
    const Errors errors = errorsAgainstGaussian(source, blurred, c.sigma, border);
    EXPECT_LT(errors.mean, c.mean);
    EXPECT_LT(errors.worst, c.worst);
  }
}

TEST(GaussianBlurTest, VariantsAgreeBitForBit) {
  for (const double sigma : {0.2, 1.0, 2.5, 5.0, 33.3, 127.0}) {
    for (const int side : {1, 2, 15, 16, 17, 33, 50}) {
      const Raster source = rasterOf(side, 51 - side + 1,
                                     randomPixels(static_cast<std::size_t>(side * (52 - side)), 5));
      Raster expected = source;
      GaussianBlur(sigma).apply(expected, *availablePixelKernels().front());
      for (const PixelKernel* kernel : availablePixelKernels()) {
        Raster actual = source;
        GaussianBlur(sigma).apply(actual, *kernel);
        EXPECT_EQ(actual, expected) << kernel->name << ", sigma " << sigma << ", side " << side;
      }
    }
  }
}

TEST(GaussianBlurTest, LeavesPlainColoursAlone) {
  for (double sigma = 0.1; sigma < 130; sigma *= 1.17) {
    for (const Pixel color : {0xffffffffU, 0xff000000U, 0u, 0xff017ffeU, 0x80402010U}) {
      Raster raster(20, 20);
      raster.fill(color);
      const Raster before = raster;
      GaussianBlur(sigma).apply(raster);
      ASSERT_EQ(raster, before) << sigma << " " << color;
    }
  }
}

TEST(GaussianBlurTest, SpreadsNoFurtherThanItsReach) {
  for (const double sigma : {0.5, 2.0, 10.0}) {
    const GaussianBlur blur(sigma);
    const int middle = blur.reach() + 3;
    Raster one(2 * middle + 1, 1);
    one.at(middle, 0) = 0xffffffff;
    blur.apply(one);
    EXPECT_EQ(one.at(middle - blur.reach() - 1, 0), 0U);
    EXPECT_EQ(one.at(middle + blur.reach() + 1, 0), 0U);
    EXPECT_EQ(one.at(middle - 1, 0), one.at(middle + 1, 0));
  }
}

TEST(GaussianBlurTest, TakesAnyRadius) {
  for (const double sigma : {nan, -infinity, -3.0, 0.0, 0.05}) {
    EXPECT_TRUE(GaussianBlur(sigma).isIdentity()) << sigma;
    Raster raster = rasterOf(3, 3, randomPixels(9, 1));
    const Raster before = raster;
    GaussianBlur(sigma).apply(raster);
    EXPECT_EQ(raster, before);
  }
  // An infinite radius is no number; a huge one is the widest that there is.
  EXPECT_TRUE(GaussianBlur(infinity).isIdentity());
  EXPECT_EQ(GaussianBlur(1e300).reach(), GaussianBlur(GaussianBlur::largestSigma).reach());
  Raster none;
  GaussianBlur(4).apply(none);
  EXPECT_TRUE(none.isEmpty());
}

}  // namespace
}  // namespace plemora
