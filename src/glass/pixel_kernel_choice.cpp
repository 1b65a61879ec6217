#include "glass/pixel_kernel_variants.h"

namespace plemora {

std::span<const PixelKernel* const> availablePixelKernels() {
#ifdef PLEMORA_PIXELS_X86
  static const PixelKernel* const all[] = {&scalarPixelKernel, &sse2PixelKernel, &avx2PixelKernel};
  static const std::size_t count = __builtin_cpu_supports("avx2") ? 3 : 2;
#else
  static const PixelKernel* const all[] = {&scalarPixelKernel};
  static const std::size_t count = 1;
#endif
  return {all, count};
}

const PixelKernel& pixelKernel() {
  static const PixelKernel& fastest = *availablePixelKernels().back();
  return fastest;
}

}  // namespace plemora
