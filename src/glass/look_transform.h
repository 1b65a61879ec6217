#pragma once

#include <vector>

#include "base/color.h"
#include "glass/pixel_kernel.h"
#include "platform/layer.h"

namespace plemora {

/// What a look does to the pixels of an opaque picture: the colour matrix, if it is of use, and
/// then the washes, one over the other.
PixelTransform lookTransform(const ColorMatrix& matrix, const std::vector<Color>& washes);

}  // namespace plemora
