#pragma once

#include "audio/render/mix_kernel.h"
#include "audio/render/ramp_kernel.h"

// The variants by name, for the sources of this folder alone. Which of them are built is decided in
// CMakeLists.txt; each is defined in kernels_<instruction set>.cpp.

namespace plemora {

/// The strided operation of every variant.
void rampStridedScalar(const float* in, std::size_t inStride, float* out, std::size_t outStride,
                       std::size_t frames, float gain, float step, RampPeaks& peaks);

extern const RampKernel rampKernelScalar;
extern const MixKernel mixKernelScalar;

extern const RampKernel rampKernelSse2;
extern const MixKernel mixKernelSse2;

extern const RampKernel rampKernelAvx2;
extern const MixKernel mixKernelAvx2;

extern const RampKernel rampKernelNeon;
extern const MixKernel mixKernelNeon;

}  // namespace plemora
