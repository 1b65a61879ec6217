#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace plemora {

/// Kinds of input that treat the arithmetic differently.
enum class SampleSet { noise, denormals, specials };

inline const char* nameOf(SampleSet set) {
  switch (set) {
    case SampleSet::noise:
      return "noise";
    case SampleSet::denormals:
      return "denormals";
    case SampleSet::specials:
      return "specials";
  }
  return "";
}

inline std::vector<float> makeSamples(SampleSet set, std::size_t count, std::uint32_t seed) {
  std::mt19937 random(seed);
  std::uniform_real_distribution<float> unit(-1.0f, 1.0f);
  constexpr float infinity = std::numeric_limits<float>::infinity();
  constexpr float nan = std::numeric_limits<float>::quiet_NaN();
  constexpr float signalling = std::numeric_limits<float>::signaling_NaN();
  const float specials[] = {0.0f, -0.0f,      infinity, -infinity, nan,
                            -nan, signalling, 3.0e38f,  -1e-40f};
  std::vector<float> samples(count);
  for (float& sample : samples) {
    sample = unit(random);
    if (set == SampleSet::denormals) {
      sample *= std::numeric_limits<float>::min();
    } else if (set == SampleSet::specials && random() % 3 == 0) {
      // Copied as bytes, so that a signalling NaN stays one.
      std::memcpy(&sample, &specials[random() % std::size(specials)], sizeof sample);
    }
  }
  return samples;
}

/// Bits of a sample; all NaNs count as one, their payloads mean nothing.
inline std::uint32_t bitsOf(float sample) {
  std::uint32_t bits = 0;
  std::memcpy(&bits, &sample, sizeof bits);
  return std::isnan(sample) ? 0x7fc00000u : bits;
}

inline ::testing::AssertionResult sameBits(const std::vector<float>& expected,
                                           const std::vector<float>& actual) {
  if (expected.size() != actual.size()) {
    return ::testing::AssertionFailure()
           << expected.size() << " and " << actual.size() << " samples";
  }
  if (std::memcmp(expected.data(), actual.data(), expected.size() * sizeof(float)) == 0) {
    return ::testing::AssertionSuccess();
  }
  for (std::size_t i = 0; i < expected.size(); ++i) {
    if (bitsOf(expected[i]) != bitsOf(actual[i])) {
      return ::testing::AssertionFailure()
             << "sample " << i << ": expected " << expected[i] << ", got " << actual[i];
    }
  }
  return ::testing::AssertionSuccess();
}

/// Every length up to two blocks and a rest of the widest variant, and some real buffer sizes.
inline std::vector<std::size_t> sweptLengths() {
  std::vector<std::size_t> lengths(68);
  for (std::size_t i = 0; i < lengths.size(); ++i) {
    lengths[i] = i;
  }
  for (const std::size_t length : {128u, 441u, 480u, 1024u, 4099u}) {
    lengths.push_back(length);
  }
  return lengths;
}

}  // namespace plemora
