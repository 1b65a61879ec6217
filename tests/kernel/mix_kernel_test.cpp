#include "audio/render/mix_kernel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <vector>

#include "kernel/sample_sets.h"

namespace plemora {
namespace {

constexpr std::size_t margin = 8;

/// One of the operations, called on dst, a and b of n samples with weights w0 and w1.
struct Operation {
  const char* name;
  bool ramped;
  std::function<void(const MixKernel&, float* dst, const float* a, const float* b, std::size_t n,
                     float w0, float w1)>
      call;
};

const std::vector<Operation>& operations() {
  static const std::vector<Operation> all{
      {"mixAdd", false,
       [](const MixKernel& kernel, float* dst, const float* a, const float*, std::size_t n, float,
          float) { kernel.mixAdd(dst, a, n); }},
      {"mixSubtract", false,
       [](const MixKernel& kernel, float* dst, const float* a, const float*, std::size_t n, float,
          float) { kernel.mixSubtract(dst, a, n); }},
      {"subtractInto", false,
       [](const MixKernel& kernel, float* dst, const float* a, const float* b, std::size_t n, float,
          float) { kernel.subtractInto(dst, a, b, n); }},
      {"subtractInto in place", false,
       [](const MixKernel& kernel, float* dst, const float* a, const float*, std::size_t n, float,
          float) { kernel.subtractInto(dst, a, dst, n); }},
      {"addRamped", true,
       [](const MixKernel& kernel, float* dst, const float* a, const float*, std::size_t n,
          float w0, float w1) { kernel.addRamped(dst, a, n, w0, w1); }},
      {"addRamped in place", true,
       [](const MixKernel& kernel, float* dst, const float*, const float*, std::size_t n, float w0,
          float w1) { kernel.addRamped(dst, dst, n, w0, w1); }},
      {"scaleRamped", true,
       [](const MixKernel& kernel, float* dst, const float* a, const float*, std::size_t n,
          float w0, float w1) { kernel.scaleRamped(dst, a, n, w0, w1); }},
      {"scaleRamped in place", true,
       [](const MixKernel& kernel, float* dst, const float*, const float*, std::size_t n, float w0,
          float w1) { kernel.scaleRamped(dst, dst, n, w0, w1); }},
  };
  return all;
}

/// Samples enough for every length, made once.
struct Material {
  explicit Material(SampleSet set)
      : dst(makeSamples(set, 5000, 1)),
        a(makeSamples(set, 5000, 2)),
        b(makeSamples(set, 5000, 3)) {}

  std::vector<float> dst;
  std::vector<float> a;
  std::vector<float> b;
};

/// dst, with a margin behind, after one call over buffers at those offsets.
std::vector<float> run(const MixKernel& kernel, const Operation& operation,
                       const Material& material, std::size_t n, std::size_t offset, float w0,
                       float w1) {
  std::vector<float> dst(material.dst.begin(),
                         material.dst.begin() + static_cast<std::ptrdiff_t>(n + margin));
  operation.call(kernel, dst.data() + offset % 4, material.a.data() + offset / 4 % 4,
                 material.b.data() + offset / 16, n, w0, w1);
  return dst;
}

TEST(MixKernelTest, EqualsTheScalarLoopBitForBitAtConstantWeight) {
  const MixKernel& scalar = *availableMixKernels().front();
  for (const SampleSet set : {SampleSet::noise, SampleSet::denormals, SampleSet::specials}) {
    const Material material(set);
    for (const MixKernel* kernel : availableMixKernels()) {
      for (const Operation& operation : operations()) {
        for (const std::size_t n : sweptLengths()) {
          for (std::size_t offset = 0; offset < 64; offset += 7) {
            SCOPED_TRACE(std::string(kernel->name) + " " + operation.name + " " + nameOf(set) +
                         " n " + std::to_string(n) + " offset " + std::to_string(offset));
            for (const float weight : {0.0f, 1.0f, 0.7f}) {
              ASSERT_TRUE(sameBits(run(scalar, operation, material, n, offset, weight, weight),
                                   run(*kernel, operation, material, n, offset, weight, weight)));
            }
          }
        }
      }
    }
  }
}

TEST(MixKernelTest, StaysWithinTheErrorBoundOnRamps) {
  const MixKernel& scalar = *availableMixKernels().front();
  const float ramps[][2] = {{0.0f, 1.0f}, {1.0f, 0.0f}, {0.5f, 2.0f}};
  const Material material(SampleSet::noise);
  for (const MixKernel* kernel : availableMixKernels()) {
    for (const Operation& operation : operations()) {
      for (const auto& [w0, w1] : ramps) {
        for (const std::size_t n : sweptLengths()) {
          SCOPED_TRACE(std::string(kernel->name) + " " + operation.name + " n " +
                       std::to_string(n));
          const auto expected = run(scalar, operation, material, n, 5, w0, w1);
          const auto actual = run(*kernel, operation, material, n, 5, w0, w1);
          // Samples are within 1; the sums within 3, so that rounding one costs 2^-23 at most.
          const float bound = static_cast<float>(n) * 0x1p-23f * std::max(w0, w1) +
                              (operation.ramped ? 0x1p-23f : 0.0f);
          for (std::size_t i = 0; i < expected.size(); ++i) {
            ASSERT_NEAR(expected[i], actual[i], bound) << "sample " << i;
          }
        }
      }
    }
  }
}

TEST(MixKernelTest, DoesWhatItsNameSays) {
  for (const MixKernel* kernel : availableMixKernels()) {
    SCOPED_TRACE(kernel->name);
    const std::vector<float> a{1.0f, 2.0f, -3.0f, 4.0f};
    const std::vector<float> b{0.5f, 2.0f, 3.0f, -4.0f};
    std::vector<float> dst{10.0f, 10.0f, 10.0f, 10.0f};
    kernel->mixAdd(dst.data(), a.data(), 4);
    EXPECT_EQ(dst, (std::vector<float>{11.0f, 12.0f, 7.0f, 14.0f}));
    kernel->mixSubtract(dst.data(), b.data(), 4);
    EXPECT_EQ(dst, (std::vector<float>{10.5f, 10.0f, 4.0f, 18.0f}));
    kernel->subtractInto(dst.data(), a.data(), b.data(), 4);
    EXPECT_EQ(dst, (std::vector<float>{0.5f, 0.0f, -6.0f, 8.0f}));
    kernel->addRamped(dst.data(), a.data(), 4, 0.0f, 1.0f);  // weights 0, 1/4, 1/2, 3/4
    EXPECT_EQ(dst, (std::vector<float>{0.5f, 0.5f, -7.5f, 11.0f}));
    kernel->scaleRamped(dst.data(), a.data(), 4, 1.0f, 0.0f);
    EXPECT_EQ(dst, (std::vector<float>{1.0f, 1.5f, -1.5f, 1.0f}));
  }
}

}  // namespace
}  // namespace plemora
