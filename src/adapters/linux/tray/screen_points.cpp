#include "adapters/linux/tray/screen_points.h"

#include <QGuiApplication>
#include <QScreen>
#include <cmath>

namespace plemora {

namespace {

/// The screen in pixels: the toolkit scales its size, but leaves its origin.
QRectF pixelsOf(const QScreen& screen) {
  return {screen.geometry().topLeft(),
          QSizeF(screen.geometry().size()) * screen.devicePixelRatio()};
}

}  // namespace

Rect pointsFromPixels(const QRect& pixels) {
  const QScreen* primary = QGuiApplication::primaryScreen();
  if (!primary) {
    return {};
  }
  const QScreen* screen = primary;
  for (const QScreen* one : QGuiApplication::screens()) {
    if (pixelsOf(*one).contains(QRectF(pixels).center())) {
      screen = one;
    }
  }
  const double scale = screen->devicePixelRatio();
  const QPointF origin = screen->geometry().topLeft();
  const QPointF topLeft = origin + (QPointF(pixels.topLeft()) - origin) / scale;
  const double height = pixels.height() / scale;
  const double bottom = primary->geometry().top() + primary->geometry().height();
  return {topLeft.x() - primary->geometry().left(), bottom - topLeft.y() - height,
          pixels.width() / scale, height};
}

QRect toolkitFromPoints(const Rect& points) {
  const QScreen* primary = QGuiApplication::primaryScreen();
  const QRect frame = primary ? primary->geometry() : QRect();
  return QRectF(points.x + frame.left(), frame.top() + frame.height() - points.maxY(), points.width,
                points.height)
      .toRect();
}

}  // namespace plemora
