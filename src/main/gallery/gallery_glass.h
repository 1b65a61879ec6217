#pragma once

#include <QImage>
#include <QPoint>
#include <QSize>
#include <functional>
#include <vector>

#include "platform/main_queue.h"
#include "skin/look/control_center_look.h"

class QQuickItem;

namespace plemora {

/// A panel of glass in a picture of a desktop. Points.
struct GlassPlace {
  QPoint origin;
  QSize size;
  double cornerRadius = 0;
};

/// Draws the items, one over the other, as a window of that size would, without one. Premultiplied.
QImage renderItems(const std::vector<QQuickItem*>& items, QSize points, double scale);

/// Lays a panel of dark glass with the item on it over the desktop. settle: lets what waits in the
/// queue run.
void drawOnGlass(QImage& desktop, double scale, const GlassPlace& place, QQuickItem& item,
                 ControlCenterLook& look, MainQueue& queue, const std::function<void()>& settle);

}  // namespace plemora
