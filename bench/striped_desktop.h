#pragma once

#include "base/geometry.h"
#include "platform/backdrop_source.h"

namespace plemora {

/// A desktop of stripes and gradients, of that many points.
inline BackdropImage stripedDesktop(const Size& size, double scale) {
  BackdropImage image;
  image.scale = scale;
  image.width = static_cast<int>(size.width * scale);
  image.height = static_cast<int>(size.height * scale);
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) {
      const auto level = static_cast<unsigned>((x * 3 + y / 7 * 40) % 256);
      image.pixels.push_back(0xff000000U | level << 16 | (255 - level) << 8 |
                             static_cast<unsigned>(y % 256));
    }
  }
  return image;
}

}  // namespace plemora
