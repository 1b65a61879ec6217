#pragma once

#include <cstdint>

#include "base/color.h"
#include "glass/raster.h"
#include "platform/layer.h"

namespace plemora {

/// Premultiplied; components that are not finite count as 0, others are clamped to 0...1.
Pixel pixelFor(const Color& color);

/// The source over the backdrop by that mode, as the W3C's compositing text has it for the first
/// three; plusLighter adds, up to white.
Pixel blended(Pixel backdrop, Pixel source, BlendMode mode);

/// Blends the source over the target, its pixel (0, 0) at (x, y); what lies beyond the target is
/// left out. opacity: 0...255.
void composite(Raster& target, const Raster& source, int x, int y, std::uint8_t opacity,
               BlendMode mode);

}  // namespace plemora
