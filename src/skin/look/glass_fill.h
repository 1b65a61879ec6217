#pragma once

#include "base/color.h"

namespace plemora {

/// The fill of shapes on glass: white in dark appearance, black otherwise.
struct GlassFill {
  static constexpr Color resolve(bool isDark) { return isDark ? Color::white() : Color::black(); }
};

}  // namespace plemora
