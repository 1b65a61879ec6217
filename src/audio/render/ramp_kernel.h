#pragma once

#include <cstddef>
#include <span>

namespace plemora {

/// Running maxima of |sample| before (input) and after (output) the gain. NaN samples are passed
/// over, so a maximum that starts as a number stays one.
struct RampPeaks {
  float input = 0.0f;
  float output = 0.0f;
};

/// The inner loop of the render routine for one instruction set. Each operation multiplies the
/// samples by a gain that starts at `gain` and grows by `step` after every frame, and raises the
/// peaks. Any alignment; `out` may be `in` itself, no other overlap.
///
/// Every variant equals the scalar one bit for bit at step 0, and stays within
/// n * 2^-23 * (largest gain) * |x| of it on a ramp of n frames, since it may add up the steps in
/// another order. Real-time safe.
struct RampKernel {
  const char* name;

  /// One channel of contiguous samples.
  void (*contiguous)(const float* in, float* out, std::size_t frames, float gain, float step,
                     RampPeaks& peaks);

  /// Two interleaved channels: both samples of a frame get the same gain.
  void (*stereo)(const float* in, float* out, std::size_t frames, float gain, float step,
                 RampPeaks& peaks);

  /// One channel of an interleaved buffer: strides in samples.
  void (*strided)(const float* in, std::size_t inStride, float* out, std::size_t outStride,
                  std::size_t frames, float gain, float step, RampPeaks& peaks);
};

/// The variants that this processor can run, the scalar reference first, the fastest last.
std::span<const RampKernel* const> availableRampKernels();

/// The fastest one. The choice is made before main, so that asking costs a load.
const RampKernel& rampKernel();

}  // namespace plemora
