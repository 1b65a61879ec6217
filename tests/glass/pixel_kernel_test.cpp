#include "glass/pixel_kernel.h"

#include <gmock/gmock.h>

#include <string>

#include "pictures.h"

namespace plemora {
namespace {

constexpr std::size_t longest = 37;  // several vectors and a tail of every width

/// Runs the work for every variant but the scalar one, every length and two alignments.
template <typename Work>
void forEachVariant(Work work) {
  const auto all = availablePixelKernels();
  for (const PixelKernel* kernel : all.subspan(1)) {
    for (std::size_t offset : {0U, 1U}) {
      for (std::size_t n = 0; n + offset <= longest; ++n) {
        SCOPED_TRACE(std::string(kernel->name) + ", " + std::to_string(n) + " pixels from " +
                     std::to_string(offset));
        work(*kernel, *all[0], offset, n);
      }
    }
  }
}

TEST(PixelKernelTest, VariantsDoWhatTheScalarLoopsDo) {
  const auto above = randomPixels(longest, 1);
  const auto below = randomPixels(longest, 2);
  forEachVariant(
      [&](const PixelKernel& fast, const PixelKernel& plain, std::size_t offset, std::size_t n) {
        const auto same = [&](auto&& run) {
          auto expected = below;
          auto actual = below;
          run(plain, expected.data() + offset);
          run(fast, actual.data() + offset);
          return actual == expected;
        };
        EXPECT_TRUE(same([&](auto& k, Pixel* dst) { k.over(dst, above.data() + offset, n); }));
        EXPECT_TRUE(same([&](auto& k, Pixel* dst) { k.multiply(dst, above.data() + offset, n); }));
        for (const int factor : {0, 1, 127, 128, 254, 255}) {
          EXPECT_TRUE(same([&](auto& k, Pixel* dst) {
            k.scale(dst, static_cast<std::uint8_t>(factor), n);
          })) << factor;
        }
      });
}

TEST(PixelKernelTest, TransformsAgreeWithinOneLevel) {
  const auto source = randomPixels(longest, 3, true);
  PixelTransform transform{
      {1.2f, -0.6f, 0.1f, 40}, {0.1f, 0.8f, 0, -20}, {2, 0, -1, 0}, {0, 0.5f, 0, 128}, 0.75f,
      {10, 20, 30, 63}};
  forEachVariant(
      [&](const PixelKernel& fast, const PixelKernel& plain, std::size_t offset, std::size_t n) {
        std::vector<Pixel> expected(longest);
        std::vector<Pixel> actual(longest);
        plain.transform(expected.data(), source.data() + offset, n, transform);
        fast.transform(actual.data(), source.data() + offset, n, transform);
        for (std::size_t i = 0; i < longest; ++i) {
          EXPECT_LE(difference(actual[i], expected[i]), 1) << i;
        }
      });
}

TEST(PixelKernelTest, ScaledPixelsAreRoundedToNearest) {
  for (std::uint32_t a = 0; a < 256; ++a) {
    for (std::uint32_t b = 0; b < 256; ++b) {
      ASSERT_EQ(multiply255(a, b), static_cast<std::uint32_t>(std::lround(a * b / 255.0)));
    }
  }
}

TEST(PixelKernelTest, ClampsTheMatrixBeforeTheWash) {
  // Twice too bright: the wash of half black is laid over white, not over twice white.
  const PixelTransform transform{{2, 0, 0, 255}, {0, 2, 0, -600},  {0, 0, 1, 0}, {0, 0, 0, 255},
                                 0.5f,           {0, 0, 0, 127.5f}};
  for (const PixelKernel* kernel : availablePixelKernels()) {
    std::vector<Pixel> pixels(16, 0xffc8c864);
    kernel->transform(pixels.data(), pixels.data(), pixels.size(), transform);
    for (const Pixel pixel : pixels) {
      EXPECT_LE(difference(pixel, 0xff800032), 1) << kernel->name;
    }
  }
}

}  // namespace
}  // namespace plemora
