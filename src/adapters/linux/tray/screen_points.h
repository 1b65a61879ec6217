#pragma once

#include <QPoint>
#include <QRect>

#include "base/geometry.h"

namespace plemora {

/// From pixels of the desktop (y down) to global points (y up, origin at the bottom left corner of
/// the primary screen), by the screens that the toolkit knows. GUI thread.
Rect pointsFromPixels(const QRect& pixels);

/// From global points to the toolkit's coordinates (y down).
QRect toolkitFromPoints(const Rect& points);

}  // namespace plemora
