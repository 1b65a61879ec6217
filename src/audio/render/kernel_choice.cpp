#include <algorithm>
#include <array>
#include <cstring>

#include "audio/render/kernel_variants.h"

namespace plemora {
namespace {

/// The built variants from the reference to the fastest, cut to those that the processor has.
struct Choice {
  std::array<const RampKernel*, 3> ramp{&rampKernelScalar};
  std::array<const MixKernel*, 3> mix{&mixKernelScalar};
  std::size_t count = 1;

  Choice() {
#if defined(PLEMORA_KERNELS_X86)
    __builtin_cpu_init();
    if (__builtin_cpu_supports("sse2")) {
      add(rampKernelSse2, mixKernelSse2);
    }
    if (__builtin_cpu_supports("avx2")) {
      add(rampKernelAvx2, mixKernelAvx2);
    }
#elif defined(PLEMORA_KERNELS_NEON)
    add(rampKernelNeon, mixKernelNeon);  // part of every 64-bit Arm processor
#endif
  }

  void add(const RampKernel& rampVariant, const MixKernel& mixVariant) {
    ramp[count] = &rampVariant;
    mix[count] = &mixVariant;
    ++count;
  }
};

// Made before main: a local static would be guarded by a lock at its first use, which may be on a
// real-time thread.
const Choice choice;

}  // namespace

std::span<const RampKernel* const> availableRampKernels() {
  return std::span(choice.ramp).first(choice.count);
}

const RampKernel& rampKernel() {
  return *choice.ramp[choice.count - 1];
}

std::span<const MixKernel* const> availableMixKernels() {
  return std::span(choice.mix).first(choice.count);
}

const MixKernel& mixKernel() {
  return *choice.mix[choice.count - 1];
}

void clear(float* dst, std::size_t n) {
  std::fill_n(dst, n, 0.0f);
}

}  // namespace plemora
