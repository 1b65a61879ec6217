#pragma once

#include <vector>

#include "base/geometry.h"
#include "platform/layer.h"

namespace plemora {

/// Closed polygons, in pixels.
using Polygons = std::vector<std::vector<Point>>;

/// Numbers that are of use to a drawing: neither infinite nor so large that they overflow.
double finiteOr0(double value);
Rect finiteOr0(const Rect& rect);

/// The rectangle with its corners rounded, as a polygon that runs clockwise (y down); nothing when
/// it is empty. The radius is cut down to half the shorter side. Continuous corners start further
/// from the corner, where their curve is still straight, and meet the circle in its middle.
/// The origin is added, in points, and all of it multiplied by the scale.
void addOutline(Polygons& polygons, const RoundedRect& shape, Point origin, double scale);

/// The line of that width (points) along the outline, for the non-zero rule: its outer edge
/// clockwise, its inner edge the other way.
void addStroke(Polygons& polygons, const RoundedRect& shape, double lineWidth, Point origin,
               double scale);

}  // namespace plemora
