#pragma once

namespace plemora {

/// An sRGB colour, not premultiplied; all components 0...1.
struct Color {
  double red = 0;
  double green = 0;
  double blue = 0;
  double alpha = 1;

  static constexpr Color gray(double level, double alpha = 1) {
    return {level, level, level, alpha};
  }
  static constexpr Color white(double alpha = 1) { return gray(1, alpha); }
  static constexpr Color black(double alpha = 1) { return gray(0, alpha); }

  bool operator==(const Color&) const = default;
};

}  // namespace plemora
