#include "glass/look_transform.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

#include "glass/color_matrix.h"
#include "glass/outline.h"

namespace plemora {

PixelTransform lookTransform(const ColorMatrix& given, const std::vector<Color>& washes) {
  const ColorMatrix& matrix = isUsable(given) ? given : identityMatrix;
  PixelTransform transform;
  float* rows[] = {transform.red, transform.green, transform.blue, transform.alpha};
  for (std::size_t row = 0; row < std::size(rows); ++row) {
    const float* from = matrix.data() + 5 * row;
    std::copy_n(from, 3, rows[row]);
    rows[row][3] = 255 * (from[3] + from[4]);  // the alpha of 1 joins the offset
  }
  for (const Color& wash : washes) {
    const auto alpha = static_cast<float>(std::clamp(finiteOr0(wash.alpha), 0.0, 1.0));
    const double parts[] = {wash.red, wash.green, wash.blue, 1};
    transform.keep *= 1 - alpha;
    for (std::size_t i = 0; i < std::size(parts); ++i) {
      const auto part = static_cast<float>(std::clamp(finiteOr0(parts[i]), 0.0, 1.0));
      transform.wash[i] = transform.wash[i] * (1 - alpha) + 255 * part * alpha;
    }
  }
  return transform;
}

}  // namespace plemora
