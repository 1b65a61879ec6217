#include "main/stage/drawing_painter.h"

#include <QFont>
#include <QFontMetricsF>
#include <QLinearGradient>
#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <cstring>

#include "glass/backdrop_filter.h"
#include "glass/coverage.h"
#include "glass/outline.h"
#include "main/stage/stage_glass.h"
#include "views/symbol_image.h"

namespace plemora {

namespace {

QRectF rectF(const Rect& rect) {
  return {rect.x, rect.y, rect.width, rect.height};
}

QColor colorF(const Color& color) {
  const auto part = [](double value) { return static_cast<float>(std::clamp(value, 0.0, 1.0)); };
  return QColor::fromRgbF(part(color.red), part(color.green), part(color.blue), part(color.alpha));
}

double radiusOf(const QRectF& rect, double radius) {
  return std::min(radius, std::min(rect.width(), rect.height()) / 2);
}

/// The same colour for the same name, and different ones for most others.
double hueOf(const std::string& name) {
  unsigned hash = 2166136261U;
  for (const char letter : name) {
    hash = (hash ^ static_cast<unsigned char>(letter)) * 16777619U;
  }
  return (hash % 360) / 360.0;
}

}  // namespace

BackdropImage backdropOf(const QImage& picture, const QRect& part, double scale) {
  BackdropImage image{part.width(), part.height(), scale, {}};
  image.pixels.resize(static_cast<std::size_t>(part.width()) *
                      static_cast<std::size_t>(part.height()));
  for (int y = 0; y < part.height(); ++y) {
    const auto* row = reinterpret_cast<const unsigned*>(picture.constScanLine(part.y() + y));
    std::memcpy(
        image.pixels.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(part.width()),
        row + part.x(), static_cast<std::size_t>(part.width()) * 4);
  }
  return image;
}

QImage imageOf(const Raster& raster) {
  QImage image(raster.width(), raster.height(), QImage::Format_ARGB32_Premultiplied);
  for (int y = 0; y < raster.height(); ++y) {
    std::memcpy(image.scanLine(y), raster.row(y), raster.bytesPerLine());
  }
  return image;
}

DrawingPainter::DrawingPainter(const QImage& below, Point origin, QImage& layer, QPoint place,
                               double scale)
    : below_(below), origin_(origin), place_(place), scale_(scale), painter_(&layer) {
  painter_.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
  painter_.translate(-place);
  painter_.scale(scale, scale);
  painter_.translate(-origin.x, -origin.y);
}

void DrawingPainter::paint(const Drawing& drawing) {
  for (const Mark& mark : drawing) {
    std::visit([this](const auto& any) { paintMark(any); }, mark);
  }
}

void DrawingPainter::paintMark(const FillMark& mark) {
  const QRectF rect = rectF(mark.rect);
  painter_.setPen(Qt::NoPen);
  if (mark.bottom) {
    QLinearGradient gradient(rect.topLeft(), rect.bottomLeft());
    gradient.setColorAt(0, colorF(mark.color));
    gradient.setColorAt(1, colorF(*mark.bottom));
    painter_.setBrush(gradient);
  } else {
    painter_.setBrush(colorF(mark.color));
  }
  const double radius = radiusOf(rect, mark.radius);
  painter_.drawRoundedRect(rect, radius, radius);
}

void DrawingPainter::paintMark(const StrokeMark& mark) {
  const double half = mark.width / 2;
  const QRectF rect = rectF(mark.rect).adjusted(half, half, -half, -half);
  painter_.setPen(QPen(colorF(mark.color), mark.width));
  painter_.setBrush(Qt::NoBrush);
  const double radius = radiusOf(rect, mark.radius - half);
  painter_.drawRoundedRect(rect, radius, radius);
}

void DrawingPainter::paintMark(const ShadowMark& mark) {
  // Rings of ever less darkness, clipped so that what is translucent does not show them through.
  const QRectF rect = rectF(mark.rect);
  QPainterPath outside;
  outside.addRect(rect.translated(0, mark.drop)
                      .adjusted(-mark.blur, -mark.blur, mark.blur, mark.blur)
                      .united(rect));
  QPainterPath inside;
  const double corner = radiusOf(rect, mark.radius);
  inside.addRoundedRect(rect, corner, corner);
  painter_.save();
  painter_.setClipPath(outside.subtracted(inside));
  painter_.setPen(Qt::NoPen);
  const int rings = std::max(1, static_cast<int>(mark.blur));
  painter_.setBrush(QColor::fromRgbF(0, 0, 0, static_cast<float>(mark.strength / rings)));
  for (int i = 0; i < rings; ++i) {
    const double reach = mark.blur * (i + 1) / rings - mark.blur * 0.25;
    const QRectF ring = rect.translated(0, mark.drop).adjusted(-reach, -reach, reach, reach);
    const double radius = std::max(0.0, corner + reach);
    painter_.drawRoundedRect(ring, radius, radius);
  }
  painter_.restore();
}

void DrawingPainter::paintMark(const GlassMark& mark) {
  const QRectF pixels((mark.rect.x - origin_.x) * scale_, (mark.rect.y - origin_.y) * scale_,
                      mark.rect.width * scale_, mark.rect.height * scale_);
  const QRect target = pixels.toAlignedRect().intersected(below_.rect());
  if (target.isEmpty()) {
    return;
  }
  const GlassLook look = stageGlassLook(mark.kind, mark.isDark, mark.release);
  const int margin = static_cast<int>(std::ceil(BackdropFilter::reach(look, scale_) * scale_));
  const QRect seen = target.adjusted(-margin, -margin, margin, margin).intersected(below_.rect());
  BackdropFilter filter;
  filter.setBackdrop(backdropOf(below_, seen, scale_),
                     {(seen.x() - target.x()) / scale_, (seen.y() - target.y()) / scale_,
                      seen.width() / scale_, seen.height() / scale_});
  Raster raster(target.width(), target.height());
  filter.render(look, scale_, raster);
  Polygons outline;
  addOutline(outline,
             {{pixels.x() - target.x(), pixels.y() - target.y(), pixels.width(), pixels.height()},
              mark.radius * scale_,
              true},
             {}, 1);
  clipTo(raster, coverageOf(outline, FillRule::nonZero, raster.bounds()));
  painter_.save();
  painter_.resetTransform();
  painter_.drawImage(target.topLeft() - place_, imageOf(raster));
  painter_.restore();

  const GlassRim rim = stageGlassRim(mark.kind);
  if (rim.top <= 0) {
    return;
  }
  if (scale_ >= 2) {
    paintRim(mark, 0.5, 0.25, {rim.top, rim.top});
    paintRim(mark, 0.5, 0.75, {rim.rest, rim.rest});
  } else {
    paintRim(mark, 1, 0.5, rim);
  }
}

void DrawingPainter::paintRim(const GlassMark& mark, double width, double inset,
                              const GlassRim& rim) {
  const QRectF rect = rectF(mark.rect).adjusted(inset, inset, -inset, -inset);
  QLinearGradient light(rect.topLeft(), rect.bottomLeft());
  light.setColorAt(0, colorF(Color::white(rim.top)));
  light.setColorAt(0.12, colorF(Color::white(rim.rest)));
  light.setColorAt(1, colorF(Color::white(rim.rest)));
  painter_.setPen(QPen(QBrush(light), width));
  painter_.setBrush(Qt::NoBrush);
  const double radius = radiusOf(rect, mark.radius - inset);
  painter_.drawRoundedRect(rect, radius, radius);
}

void DrawingPainter::paintMark(const TextMark& mark) {
  QFont font("Inter");
  // Fonts have whole sizes alone; what lies between is scaled down.
  const double whole = std::ceil(mark.size);
  const double scale = mark.size / whole;
  font.setPixelSize(static_cast<int>(whole));
  font.setWeight(static_cast<QFont::Weight>(mark.weight));
  font.setHintingPreference(QFont::PreferNoHinting);
  painter_.setFont(font);
  painter_.setPen(colorF(mark.color));
  const Qt::Alignment across = mark.place == TextPlace::left     ? Qt::AlignLeft
                               : mark.place == TextPlace::center ? Qt::AlignHCenter
                                                                 : Qt::AlignRight;
  const QString shown = QFontMetricsF(font).elidedText(
      QString::fromStdString(mark.text), Qt::ElideRight, mark.rect.width / scale + 0.5);
  painter_.save();
  painter_.translate(mark.rect.x, mark.rect.y);
  painter_.scale(scale, scale);
  painter_.drawText(QRectF(0, 0, mark.rect.width / scale, mark.rect.height / scale),
                    static_cast<int>(across | Qt::AlignVCenter), shown);
  painter_.restore();
}

void DrawingPainter::paintMark(const SymbolMark& mark) {
  const QSize pixels(static_cast<int>(std::ceil(mark.rect.width * scale_)),
                     static_cast<int>(std::ceil(mark.rect.height * scale_)));
  painter_.drawImage(rectF(mark.rect), symbolImage({.name = QString::fromStdString(mark.name),
                                                    .variableValue = mark.value,
                                                    .color = colorF(mark.color),
                                                    .pixels = pixels}));
}

void DrawingPainter::paintMark(const AppIconMark& mark) {
  const QRectF all = rectF(mark.rect);
  const double inset = all.width() * 0.05;
  const QRectF tile = all.adjusted(inset, inset, -inset, -inset);
  const auto hue = static_cast<float>(hueOf(mark.name));
  QLinearGradient gradient(tile.topLeft(), tile.bottomLeft());
  gradient.setColorAt(0, QColor::fromHsvF(hue, 0.55f, 0.98f));
  gradient.setColorAt(1, QColor::fromHsvF(hue, 0.82f, 0.74f));
  painter_.setPen(Qt::NoPen);
  painter_.setBrush(gradient);
  painter_.drawRoundedRect(tile, tile.width() * 0.24, tile.width() * 0.24);
  if (mark.symbol.empty()) {
    QFont font("Inter");
    font.setPixelSize(static_cast<int>(std::lround(tile.height() * 0.56)));
    font.setWeight(QFont::DemiBold);
    painter_.setFont(font);
    painter_.setPen(Qt::white);
    painter_.drawText(tile, Qt::AlignCenter, QString::fromStdString(mark.name).left(1).toUpper());
    return;
  }
  const double side = tile.width() * 0.58;
  const Rect glyph{tile.center().x() - side / 2, tile.center().y() - side / 2, side, side};
  paintMark(SymbolMark{glyph, mark.symbol, Color::white(), std::nullopt});
}

void DrawingPainter::paintMark(const PointerMark& mark) {
  // The arrow in a square of 20 points, its tip in the corner.
  QPainterPath arrow;
  const QPointF corners[] = {{0, 0},      {0, 15.6},   {3.7, 12.2}, {6.2, 17.8},
                             {8.7, 16.7}, {6.3, 11.2}, {11.2, 11.2}};
  arrow.moveTo(corners[0]);
  for (const QPointF& corner : corners) {
    arrow.lineTo(corner);
  }
  arrow.closeSubpath();
  painter_.save();
  painter_.translate(mark.rect.x, mark.rect.y);
  painter_.scale(mark.rect.width / 20, mark.rect.height / 20);
  painter_.setPen(QPen(Qt::white, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter_.setBrush(Qt::black);
  painter_.drawPath(arrow);
  painter_.restore();
}

}  // namespace plemora
