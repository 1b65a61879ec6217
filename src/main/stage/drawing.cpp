#include "main/stage/drawing.h"

#include <algorithm>

namespace plemora {

namespace {

Rect extentOf(const Mark& mark) {
  if (const auto* shadow = std::get_if<ShadowMark>(&mark)) {
    return shadow->rect.offset(0, shadow->drop).inset(-shadow->blur, -shadow->blur);
  }
  return std::visit([](const auto& any) { return any.rect; }, mark);
}

}  // namespace

Rect boundsOf(const Drawing& drawing) {
  Rect all;
  for (const Mark& mark : drawing) {
    const Rect extent = extentOf(mark);
    if (extent.isEmpty()) {
      continue;
    }
    if (all.isEmpty()) {
      all = extent;
      continue;
    }
    const double right = std::max(all.maxX(), extent.maxX());
    const double bottom = std::max(all.maxY(), extent.maxY());
    all.x = std::min(all.x, extent.x);
    all.y = std::min(all.y, extent.y);
    all.width = right - all.x;
    all.height = bottom - all.y;
  }
  return all;
}

}  // namespace plemora
