#include "glass/outline.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace plemora {

namespace {

constexpr double largestCoordinate = 1e6;
/// A continuous corner begins that many radii from the corner.
constexpr double continuousExtent = 1.528665;

/// A corner from the unit square's (0, 1) to its (1, 0), bulging towards (0, 0), which stands for
/// the corner itself; and the side of that square in points.
struct Corner {
  double extent = 0;
  std::vector<Point> points;
};

Corner makeCorner(const RoundedRect& shape, double scale) {
  const double half = std::min(shape.rect.width, shape.rect.height) / 2;
  const double radius = std::clamp(finiteOr0(shape.radius), 0.0, half);
  Corner corner;
  if (radius <= 0) {
    corner.points = {{0, 0}};
    return corner;
  }
  corner.extent = shape.isContinuous ? std::min(radius * continuousExtent, half) : radius;
  // |x|^n + |y|^n = 1 is a circle at 2 and bends from nothing at its ends above that. This n lets
  // its middle touch the circle's.
  const double touch = (1 - 1 / std::numbers::sqrt2) * radius / corner.extent;
  const double power = -std::numbers::ln2 / std::log(1 - touch);
  const int segments = std::clamp(static_cast<int>(4 * std::sqrt(corner.extent * scale)), 8, 128);
  for (int i = 0; i <= segments; ++i) {
    const double angle = std::numbers::pi / 2 * i / segments;
    const auto eased = [&](double value) { return std::pow(std::max(value, 0.0), 2 / power); };
    corner.points.push_back({1 - eased(std::cos(angle)), 1 - eased(std::sin(angle))});
  }
  return corner;
}

}  // namespace

double finiteOr0(double value) {
  return std::isfinite(value) ? std::clamp(value, -largestCoordinate, largestCoordinate) : 0;
}

Rect finiteOr0(const Rect& rect) {
  return {finiteOr0(rect.x), finiteOr0(rect.y), finiteOr0(rect.width), finiteOr0(rect.height)};
}

void addOutline(Polygons& polygons, const RoundedRect& shape, Point origin, double scale) {
  const RoundedRect clean{finiteOr0(shape.rect), shape.radius, shape.isContinuous};
  const Rect& rect = clean.rect;
  if (rect.isEmpty()) {
    return;
  }
  const Corner corner = makeCorner(clean, scale);
  std::vector<Point> polygon;
  polygon.reserve(4 * corner.points.size());
  const auto add = [&](double x, double y) {
    polygon.push_back({(origin.x + x) * scale, (origin.y + y) * scale});
  };
  // A point (x, y) of the corner's curve begins near the vertical edge on the left; mirrored, the
  // curve is run backwards to keep the direction.
  const double extent = corner.extent;
  const auto& points = corner.points;
  for (auto p = points.begin(); p != points.end(); ++p) {
    add(rect.minX() + p->x * extent, rect.minY() + p->y * extent);
  }
  for (auto p = points.rbegin(); p != points.rend(); ++p) {
    add(rect.maxX() - p->x * extent, rect.minY() + p->y * extent);
  }
  for (auto p = points.begin(); p != points.end(); ++p) {
    add(rect.maxX() - p->x * extent, rect.maxY() - p->y * extent);
  }
  for (auto p = points.rbegin(); p != points.rend(); ++p) {
    add(rect.minX() + p->x * extent, rect.maxY() - p->y * extent);
  }
  polygons.push_back(std::move(polygon));
}

void addStroke(Polygons& polygons, const RoundedRect& shape, double lineWidth, Point origin,
               double scale) {
  const double half = finiteOr0(lineWidth) / 2;
  const Rect rect = finiteOr0(shape.rect);
  if (half <= 0 || rect.isEmpty()) {
    return;
  }
  const double radius =
      std::clamp(finiteOr0(shape.radius), 0.0, std::min(rect.width, rect.height) / 2);
  // A sharp corner stays sharp.
  const double outer = radius > 0 ? radius + half : 0;
  addOutline(polygons, {rect.inset(-half, -half), outer, shape.isContinuous}, origin, scale);
  const std::size_t before = polygons.size();
  addOutline(polygons, {rect.inset(half, half), std::max(radius - half, 0.0), shape.isContinuous},
             origin, scale);
  if (polygons.size() > before) {
    std::reverse(polygons.back().begin(), polygons.back().end());
  }
}

}  // namespace plemora
