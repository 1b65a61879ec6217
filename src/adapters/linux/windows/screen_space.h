#pragma once

#include <QRect>
#include <QRectF>
#include <vector>

#include "base/geometry.h"

namespace plemora {

/// Turns coordinates round between the three spaces of a desktop. A value.
/// - global: points, y up, origin at the bottom left corner of the first screen (the seams);
/// - toolkit: points, y down; each screen keeps its origin in pixels (QScreen::geometry);
/// - device: pixels of the whole desktop, y down (the X server's root window).
class ScreenSpace {
 public:
  struct Area {
    QRectF geometry;   ///< toolkit
    double scale = 1;  ///< pixels per point
  };

  /// The screens, the first one first. None: everything is taken as it is, at scale 1.
  explicit ScreenSpace(std::vector<Area> areas) : areas_(std::move(areas)) {}
  /// Of the running QGuiApplication.
  static ScreenSpace current();

  Rect toGlobal(const QRectF& toolkit) const;
  Point toGlobal(const QPointF& toolkit) const;
  QRectF toToolkit(const Rect& global) const;
  /// The nearest whole points: every edge is rounded by itself, so that an edge which does not move
  /// stays where it is.
  QRect toWholePoints(const Rect& global) const;

  /// The pixels that a rectangle covers, by the scale of the screen that holds its centre.
  QRect toDevice(const Rect& global) const;
  Point fromDevice(const QPoint& device) const;
  double scaleAt(const Rect& global) const;

 private:
  const Area& areaAt(const QPointF& toolkit) const;
  double bottom() const;
  double left() const;

  std::vector<Area> areas_;
};

}  // namespace plemora
