#include <cmath>

#include "audio/render/kernel_variants.h"

// The reference that every other variant is measured against: the routine as it is written down,
// one sample after the other.

namespace plemora {

void rampStridedScalar(const float* in, std::size_t inStride, float* out, std::size_t outStride,
                       std::size_t frames, float gain, float step, RampPeaks& peaks) {
  // Kept apart from the caller's, which the compiler must assume to lie under the output.
  RampPeaks seen = peaks;
  for (std::size_t i = 0; i < frames; ++i) {
    const float x = in[i * inStride];
    const float y = gain * x;
    out[i * outStride] = y;
    // Comparisons with NaN are false, so a NaN leaves the peak as it is.
    seen.input = std::fabs(x) > seen.input ? std::fabs(x) : seen.input;
    seen.output = std::fabs(y) > seen.output ? std::fabs(y) : seen.output;
    gain += step;
  }
  peaks = seen;
}

namespace {

void contiguous(const float* in, float* out, std::size_t frames, float gain, float step,
                RampPeaks& peaks) {
  rampStridedScalar(in, 1, out, 1, frames, gain, step, peaks);
}

void stereo(const float* in, float* out, std::size_t frames, float gain, float step,
            RampPeaks& peaks) {
  rampStridedScalar(in, 2, out, 2, frames, gain, step, peaks);
  rampStridedScalar(in + 1, 2, out + 1, 2, frames, gain, step, peaks);
}

}  // namespace

constinit const RampKernel rampKernelScalar{"scalar", contiguous, stereo, rampStridedScalar};

}  // namespace plemora
