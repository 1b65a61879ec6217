#include "glass/color_matrix.h"

#include <algorithm>
#include <cmath>

namespace plemora {

namespace {

constexpr int rows = 4;
constexpr int columns = 5;
/// How much red, green and blue lighten a picture, by Rec. 709.
constexpr double luminance[] = {0.2126, 0.7152, 0.0722};

std::size_t index(int row, int column) {
  return static_cast<std::size_t>(row * columns + column);
}

}  // namespace

ColorMatrix saturationMatrix(double amount) {
  ColorMatrix matrix = identityMatrix;
  if (!std::isfinite(amount)) {
    return matrix;
  }
  for (int row = 0; row < 3; ++row) {
    for (int column = 0; column < 3; ++column) {
      const double own = row == column ? amount : 0;
      matrix[index(row, column)] = static_cast<float>(luminance[column] * (1 - amount) + own);
    }
  }
  return matrix;
}

ColorMatrix chained(const ColorMatrix& first, const ColorMatrix& second) {
  ColorMatrix result{};
  for (int row = 0; row < rows; ++row) {
    for (int column = 0; column < columns; ++column) {
      float sum = column == columns - 1 ? second[index(row, column)] : 0;
      for (int k = 0; k < rows; ++k) {
        sum += second[index(row, k)] * first[index(k, column)];
      }
      result[index(row, column)] = sum;
    }
  }
  return result;
}

bool isUsable(const ColorMatrix& matrix) {
  return std::all_of(matrix.begin(), matrix.end(),
                     [](float value) { return std::isfinite(value); });
}

}  // namespace plemora
