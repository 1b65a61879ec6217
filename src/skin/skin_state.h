#pragma once

#include "base/published.h"

namespace plemora {

/// What the module over the program's tiles shows. Main thread.
struct SkinState {
  Published<float> volume{0};       ///< master volume, 0...1
  Published<bool> hasVolume{true};  ///< the output device has a volume that can be set
  Published<bool> isWide{false};    ///< the module is two tiles wide
  Published<bool> isDragging{false};
  Published<bool> isHeadphones{false};  ///< the default output is headphones
  Published<bool> isHovering{false};    ///< the pointer is over the module
};

}  // namespace plemora
