#pragma once

#include "glass/pixel_kernel.h"

namespace plemora {

extern const PixelKernel scalarPixelKernel;
extern const PixelKernel sse2PixelKernel;
extern const PixelKernel avx2PixelKernel;

}  // namespace plemora
