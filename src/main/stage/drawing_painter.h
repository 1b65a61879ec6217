#pragma once

#include <QImage>
#include <QPainter>

#include "base/geometry.h"
#include "glass/raster.h"
#include "main/stage/drawing.h"
#include "main/stage/stage_glass.h"
#include "platform/backdrop_source.h"

namespace plemora {

/// A part of an opaque picture (32 bits a pixel) that holds it, as glass takes it.
BackdropImage backdropOf(const QImage& picture, const QRect& part, double scale);
QImage imageOf(const Raster& raster);

/// Paints drawings. GUI thread.
class DrawingPainter {
 public:
  /// below: the picture so far, which glass looks at; its top left corner stands for that point of
  /// the drawing. layer: what is painted into, at the same scale; its first pixel lies at that
  /// place of the picture, in pixels. Both outlive the painter.
  DrawingPainter(const QImage& below, Point origin, QImage& layer, QPoint place, double scale);

  void paint(const Drawing& drawing);

 private:
  void paintMark(const FillMark& mark);
  void paintMark(const StrokeMark& mark);
  void paintMark(const ShadowMark& mark);
  void paintMark(const GlassMark& mark);
  void paintRim(const GlassMark& mark, double width, double inset, const GlassRim& rim);
  void paintMark(const TextMark& mark);
  void paintMark(const SymbolMark& mark);
  void paintMark(const AppIconMark& mark);
  void paintMark(const PointerMark& mark);

  const QImage& below_;
  Point origin_;
  QPoint place_;
  double scale_;
  QPainter painter_;  // in points of the drawing
};

}  // namespace plemora
