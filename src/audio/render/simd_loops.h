#pragma once

#include <cstddef>

#include "audio/render/kernel_variants.h"

// The loops of the vectorised kernels, written once over a vector type V that each
// kernels_<instruction set>.cpp defines in its unnamed namespace:
//
//   V::width                      samples in a vector, even
//   V load(const float*), void store(float*), V fill(float)
//   V add(V, V), V subtract(V, V), V multiply(V, V)     one IEEE rounding each, never fused
//   V magnitude(V)                |x|
//   V larger(V x, V seen)         x where x > seen, else seen (so NaN in x is passed over)
//   float largestElement(V)       of numbers
//
// V being local to its file makes every instance local too: no function compiled for a newer
// processor can be picked by the linker for code that runs on an older one. For the same reason
// nothing here calls inline functions of the standard library.

namespace plemora {

template <typename V>
struct SimdLoops {
  // Four vectors a round keep four independent chains of additions and maxima in flight.
  static constexpr std::size_t vectors = 4;
  static constexpr std::size_t block = vectors * V::width;

  /// 0, 1, 2 ... for single channels and 0, 0, 1, 1 ... for pairs: the frame of each sample.
  template <std::size_t channels>
  struct FrameNumbers {
    float values[block] = {};
    constexpr FrameNumbers() {
      for (std::size_t i = 0; i < block; ++i) {
        values[i] = static_cast<float>(i / channels);
      }
    }
  };
  template <std::size_t channels>
  static constexpr FrameNumbers<channels> frameNumbers{};

  /// Weights of a block of consecutive samples, in which `channels` neighbours share one.
  struct Weights {
    V lane[vectors];
    V stride;

    template <std::size_t channels>
    static Weights from(float first, float step) {
      Weights weights;
      const V start = V::fill(first);
      const V slope = V::fill(step);
      for (std::size_t v = 0; v < vectors; ++v) {
        const V frame = V::load(frameNumbers<channels>.values + v * V::width);
        weights.lane[v] = V::add(start, V::multiply(frame, slope));
      }
      weights.stride = V::fill(static_cast<float>(block / channels) * step);
      return weights;
    }

    void advance() {
      for (std::size_t v = 0; v < vectors; ++v) {
        lane[v] = V::add(lane[v], stride);
      }
    }

    void store(float (&values)[block]) const {
      for (std::size_t v = 0; v < vectors; ++v) {
        lane[v].store(values + v * V::width);
      }
    }
  };

  /// The largest element of the vectors and of `seen`.
  static float largest(const V (&maxima)[vectors], float seen) {
    const V folded = V::larger(V::larger(maxima[0], maxima[1]), V::larger(maxima[2], maxima[3]));
    const float found = V::largestElement(folded);
    return found > seen ? found : seen;
  }

  /// The ramp over `samples` interleaved samples of that many channels (1 or 2).
  template <std::size_t channels>
  static void ramp(const float* in, float* out, std::size_t frames, float gain, float step,
                   RampPeaks& peaks) {
    const std::size_t samples = frames * channels;
    const std::size_t whole = samples - samples % block;
    Weights weights = Weights::template from<channels>(gain, step);
    V inputMax[vectors];
    V outputMax[vectors];
    for (std::size_t v = 0; v < vectors; ++v) {
      inputMax[v] = V::fill(0.0f);
      outputMax[v] = V::fill(0.0f);
    }
    for (std::size_t i = 0; i < whole; i += block) {
      for (std::size_t v = 0; v < vectors; ++v) {
        const V x = V::load(in + i + v * V::width);
        const V y = V::multiply(weights.lane[v], x);
        y.store(out + i + v * V::width);
        inputMax[v] = V::larger(V::magnitude(x), inputMax[v]);
        outputMax[v] = V::larger(V::magnitude(y), outputMax[v]);
      }
      weights.advance();
    }
    peaks.input = largest(inputMax, peaks.input);
    peaks.output = largest(outputMax, peaks.output);

    if (whole == samples) {
      return;
    }
    float tailWeights[block];
    weights.store(tailWeights);
    for (std::size_t i = whole; i < samples; ++i) {
      const float x = in[i];
      const float y = tailWeights[i - whole] * x;
      out[i] = y;
      const float xMagnitude = __builtin_fabsf(x);
      const float yMagnitude = __builtin_fabsf(y);
      peaks.input = xMagnitude > peaks.input ? xMagnitude : peaks.input;
      peaks.output = yMagnitude > peaks.output ? yMagnitude : peaks.output;
    }
  }

  static void mixAdd(float* dst, const float* src, std::size_t n) {
    subtractOrAdd<false>(dst, dst, src, n);
  }

  static void mixSubtract(float* dst, const float* src, std::size_t n) {
    subtractOrAdd<true>(dst, dst, src, n);
  }

  static void subtractInto(float* dst, const float* a, const float* b, std::size_t n) {
    subtractOrAdd<true>(dst, a, b, n);
  }

  template <bool subtracts>
  static void subtractOrAdd(float* dst, const float* a, const float* b, std::size_t n) {
    const std::size_t whole = n - n % block;
    for (std::size_t i = 0; i < whole; i += block) {
      for (std::size_t at = i; at < i + block; at += V::width) {
        const V left = V::load(a + at);
        const V right = V::load(b + at);
        (subtracts ? V::subtract(left, right) : V::add(left, right)).store(dst + at);
      }
    }
    for (std::size_t i = whole; i < n; ++i) {
      dst[i] = subtracts ? a[i] - b[i] : a[i] + b[i];
    }
  }

  static void addRamped(float* dst, const float* src, std::size_t n, float w0, float w1) {
    weigh<true>(dst, src, n, w0, w1);
  }

  static void scaleRamped(float* dst, const float* src, std::size_t n, float w0, float w1) {
    weigh<false>(dst, src, n, w0, w1);
  }

  template <bool adds>
  static void weigh(float* dst, const float* src, std::size_t n, float w0, float w1) {
    const std::size_t whole = n - n % block;
    const float step = n > 0 ? (w1 - w0) / static_cast<float>(n) : 0.0f;
    Weights weights = Weights::template from<1>(w0, step);
    for (std::size_t i = 0; i < whole; i += block) {
      for (std::size_t v = 0; v < vectors; ++v) {
        float* const at = dst + i + v * V::width;
        const V weighted = V::multiply(weights.lane[v], V::load(src + i + v * V::width));
        (adds ? V::add(V::load(at), weighted) : weighted).store(at);
      }
      weights.advance();
    }
    if (whole == n) {
      return;
    }
    float tailWeights[block];
    weights.store(tailWeights);
    for (std::size_t i = whole; i < n; ++i) {
      const float weighted = tailWeights[i - whole] * src[i];
      dst[i] = adds ? dst[i] + weighted : weighted;
    }
  }

  /// Samples that do not lie side by side gain nothing from vectors.
  static constexpr RampKernel rampKernel(const char* name) {
    return {name, ramp<1>, ramp<2>, rampStridedScalar};
  }

  static constexpr MixKernel mixKernel(const char* name) {
    return {name, mixAdd, mixSubtract, subtractInto, addRamped, scaleRamped};
  }
};

}  // namespace plemora
