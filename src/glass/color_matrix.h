#pragma once

#include "platform/layer.h"

namespace plemora {

inline constexpr ColorMatrix identityMatrix = {1, 0, 0, 0, 0, 0, 1, 0, 0, 0,
                                               0, 0, 1, 0, 0, 0, 0, 0, 1, 0};

/// Draws colours away from the grey of the same luminance: 0 grey, 1 unchanged, above 1 more
/// vivid. Not a finite number: unchanged.
ColorMatrix saturationMatrix(double amount);

/// The first and then the second; without a limit to 0...1 in between.
ColorMatrix chained(const ColorMatrix& first, const ColorMatrix& second);

/// Whether all its numbers are finite. A matrix with others is of no use.
bool isUsable(const ColorMatrix& matrix);

}  // namespace plemora
