#pragma once

#include <cstdint>
#include <vector>

#include "glass/outline.h"
#include "glass/raster.h"

namespace plemora {

/// Pixels beside each other that a shape covers to the same degree.
struct CoverageSpan {
  int y = 0;
  int x = 0;
  int width = 0;
  std::uint8_t coverage = 0;  ///< 1...255

  bool operator==(const CoverageSpan&) const = default;
};

enum class FillRule { nonZero, evenOdd };

/// The part of the clip rectangle that the polygons fill, from the top, in each row from the left:
/// the area of each pixel inside, exact where no two edges share it.
std::vector<CoverageSpan> coverageOf(const Polygons& polygons, FillRule rule,
                                     const PixelRect& clip);

/// Multiplies the picture by the coverage: what no span covers becomes transparent.
void clipTo(Raster& raster, const std::vector<CoverageSpan>& spans);

}  // namespace plemora
