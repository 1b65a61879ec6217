#include "adapters/linux/windows/screen_space.h"

#include <QGuiApplication>
#include <QScreen>
#include <algorithm>
#include <cmath>

namespace plemora {

namespace {

constexpr ScreenSpace::Area plain{};

/// Squared distance from a point to a rectangle, 0 inside.
double distance(const QRectF& rect, const QPointF& point) {
  const double dx = std::max({rect.left() - point.x(), 0.0, point.x() - rect.right()});
  const double dy = std::max({rect.top() - point.y(), 0.0, point.y() - rect.bottom()});
  return dx * dx + dy * dy;
}

QRectF deviceRect(const ScreenSpace::Area& area) {
  return {area.geometry.topLeft(), area.geometry.size() * area.scale};
}

}  // namespace

ScreenSpace ScreenSpace::current() {
  std::vector<Area> areas;
  const QScreen* first = QGuiApplication::primaryScreen();
  for (const QScreen* screen : QGuiApplication::screens()) {
    const Area area{screen->geometry(), screen->devicePixelRatio()};
    areas.insert(screen == first ? areas.begin() : areas.end(), area);
  }
  return ScreenSpace(std::move(areas));
}

double ScreenSpace::bottom() const {
  return areas_.empty() ? 0 : areas_.front().geometry.bottom();
}

double ScreenSpace::left() const {
  return areas_.empty() ? 0 : areas_.front().geometry.left();
}

const ScreenSpace::Area& ScreenSpace::areaAt(const QPointF& toolkit) const {
  const auto nearest =
      std::min_element(areas_.begin(), areas_.end(), [&](const Area& a, const Area& b) {
        return distance(a.geometry, toolkit) < distance(b.geometry, toolkit);
      });
  return nearest == areas_.end() ? plain : *nearest;
}

Rect ScreenSpace::toGlobal(const QRectF& toolkit) const {
  return {toolkit.left() - left(), bottom() - toolkit.bottom(), toolkit.width(), toolkit.height()};
}

Point ScreenSpace::toGlobal(const QPointF& toolkit) const {
  return {toolkit.x() - left(), bottom() - toolkit.y()};
}

QRectF ScreenSpace::toToolkit(const Rect& global) const {
  return {global.x + left(), bottom() - global.maxY(), global.width, global.height};
}

QRect ScreenSpace::toWholePoints(const Rect& global) const {
  const QRectF exact = toToolkit(global);
  const auto round = [](double value) { return static_cast<int>(std::lround(value)); };
  const QPoint topLeft(round(exact.left()), round(exact.top()));
  return {topLeft, QSize(std::max(1, round(exact.right()) - topLeft.x()),
                         std::max(1, round(exact.bottom()) - topLeft.y()))};
}

QRect ScreenSpace::toDevice(const Rect& global) const {
  const QRectF exact = toToolkit(global);
  const Area& area = areaAt(exact.center());
  const QPointF origin = area.geometry.topLeft();
  return QRectF(origin + (exact.topLeft() - origin) * area.scale, exact.size() * area.scale)
      .toAlignedRect();
}

Point ScreenSpace::fromDevice(const QPoint& device) const {
  const QPointF middle = QPointF(device) + QPointF(0.5, 0.5);  // of the pixel
  const Area* nearest = &plain;
  for (const Area& area : areas_) {
    if (nearest == &plain ||
        distance(deviceRect(area), middle) < distance(deviceRect(*nearest), middle)) {
      nearest = &area;
    }
  }
  const QPointF origin = nearest->geometry.topLeft();
  return toGlobal(origin + (QPointF(device) - origin) / nearest->scale);
}

double ScreenSpace::scaleAt(const Rect& global) const {
  return areaAt(toToolkit(global).center()).scale;
}

}  // namespace plemora
