#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <cmath>
#include <numbers>

#include "views/figures.h"

namespace plemora {

namespace {

constexpr double tileSide = 64;
constexpr double tileRadius = 15;
constexpr QPointF middle{tileSide / 2, tileSide / 2};

QColor white(double alpha) {
  return QColor::fromRgbF(1, 1, 1, static_cast<float>(alpha));
}

/// From 1 down to 0 and back, beginning at 1.
double pulse(double phase) {
  return 0.5 + 0.5 * std::cos(2 * std::numbers::pi * phase);
}

double eased(double part) {
  return part * part * (3 - 2 * part);
}

void fill(QPainter& painter, const QRectF& rect, double radius, const QBrush& brush) {
  painter.setPen(Qt::NoPen);
  painter.setBrush(brush);
  painter.drawRoundedRect(rect, radius, radius);
}

void paintTile(QPainter& painter, const QColor& top, const QColor& bottom) {
  const QRectF tile(0, 0, tileSide, tileSide);
  QLinearGradient gradient(tile.topLeft(), tile.bottomLeft());
  gradient.setColorAt(0, top);
  gradient.setColorAt(1, bottom);
  fill(painter, tile, tileRadius, gradient);
  // The light that the upper edge catches.
  QLinearGradient rim(tile.topLeft(), tile.bottomLeft());
  rim.setColorAt(0, white(0.4));
  rim.setColorAt(0.5, white(0));
  painter.setPen(QPen(rim, 1));
  painter.setBrush(Qt::NoBrush);
  painter.drawRoundedRect(tile.adjusted(0.5, 0.5, -0.5, -0.5), tileRadius - 0.5, tileRadius - 0.5);
}

/// A loudspeaker with one wave, around its middle.
void paintSpeaker(QPainter& painter, const QPointF& center, double size, const QColor& color) {
  painter.save();
  painter.translate(center);
  painter.scale(size / 20, size / 20);
  QPainterPath body(QPointF(-8, -3));
  body.lineTo(-4.5, -3);
  body.lineTo(0, -7);
  body.lineTo(0, 7);
  body.lineTo(-4.5, 3);
  body.lineTo(-8, 3);
  body.closeSubpath();
  painter.setPen(QPen(color, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.setBrush(color);
  painter.drawPath(body);
  painter.setPen(QPen(color, 2.1, Qt::SolidLine, Qt::RoundCap));
  painter.setBrush(Qt::NoBrush);
  painter.drawArc(QRectF(-4, -5, 10, 10), -50 * 16, 100 * 16);
  painter.restore();
}

/// A slider from left to right, filled up to its knob.
void paintSlider(QPainter& painter, const QRectF& track, double value, const QColor& groove,
                 const QColor& ink) {
  const double radius = track.height() / 2;
  fill(painter, track, radius, groove);
  QRectF filled = track;
  filled.setWidth(track.width() * value);
  fill(painter, filled, radius, ink);
  painter.drawEllipse(QPointF(filled.right(), track.center().y()), track.height() * 1.1,
                      track.height() * 1.1);
}

/// The bar that the icon lives in, with what hangs from it; upside down it is a taskbar.
void paintBar(QPainter& painter, double phase, const QColor& ink, bool isAtBottom) {
  const double barY = isAtBottom ? 39 : 12;
  const double paneY = isAtBottom ? 13 : 28;
  const QPointF icon(40, barY + 6.5);
  fill(painter, QRectF(8, barY, 48, 13), 6.5, white(0.95));
  for (const double x : {15.0, 22.0}) {
    fill(painter, QRectF(x - 1.8, icon.y() - 1.8, 3.6, 3.6), 1.8,
         QColor(ink.red(), ink.green(), ink.blue(), 110));
  }
  fill(painter, QRectF(48.2, icon.y() - 1.8, 3.6, 3.6), 1.8,
       QColor(ink.red(), ink.green(), ink.blue(), 110));
  fill(painter, QRectF(26, paneY, 28, 23), 6, white(0.3));
  const double swing = 0.16 * std::sin(2 * std::numbers::pi * phase);
  paintSlider(painter, QRectF(30.5, paneY + 6.5, 19, 2.6), 0.68 + swing, white(0.45), white(1));
  paintSlider(painter, QRectF(30.5, paneY + 14.5, 19, 2.6), 0.4 - swing, white(0.45), white(1));
  paintSpeaker(painter, icon, 10 + 1.2 * (1 - pulse(phase)), ink);
}

}  // namespace

void paintAudioStep(QPainter& painter, double phase, const QColor&) {
  paintTile(painter, "#6b9bff", "#3457e6");
  constexpr double top = 15;
  constexpr double length = 34;
  constexpr double thickness = 4.4;
  for (int i = 0; i < 3; ++i) {
    const double turn = 2 * std::numbers::pi * (phase + i / 3.0);
    const double x = 18 + 14 * i;
    const double knobY = top + length * (0.5 - 0.26 * std::sin(turn));
    fill(painter, QRectF(x - thickness / 2, top, thickness, length), thickness / 2, white(0.34));
    fill(painter, QRectF(x - thickness / 2, knobY, thickness, top + length - knobY), thickness / 2,
         white(1));
    painter.drawEllipse(QPointF(x, knobY), 5.4, 5.4);
  }
}

void paintAccessibilityStep(QPainter& painter, double phase, const QColor&) {
  paintTile(painter, "#b98bff", "#7442dd");
  fill(painter, QRectF(13, 11, 38, 42), 9, white(0.24));
  fill(painter, QRectF(17, 15, 14, 12), 4.5, white(0.5));
  fill(painter, QRectF(33, 15, 14, 12), 4.5, white(0.5));
  // The module that comes and goes.
  const double strength = pulse(phase);
  fill(painter, QRectF(17, 30, 30, 19), 5.5, white(0.16 + 0.84 * strength));
  QColor groove("#7442dd");
  groove.setAlphaF(static_cast<float>(0.3 * strength));
  QColor ink("#7442dd");
  ink.setAlphaF(static_cast<float>(strength));
  paintSlider(painter, QRectF(21.5, 38.2, 21, 2.8), 0.62, groove, ink);
}

void paintControlCenterStep(QPainter& painter, double phase, const QColor&) {
  paintTile(painter, "#45d3c3", "#128ea6");
  // Each half: rest, then half a turn, in which the two change places.
  const double half = std::fmod(phase * 2, 1.0);
  const double turn = (phase < 0.5 ? 0 : 1) + (half < 0.5 ? 0 : eased(half * 2 - 1));
  constexpr double side = 23;
  constexpr double reach = 11.5;
  const double angle = std::numbers::pi * (turn + 0.25);
  const QPointF away(reach * std::cos(angle), reach * std::sin(angle));
  const auto tileAt = [](const QPointF& center) {
    return QRectF(center.x() - side / 2, center.y() - side / 2, side, side);
  };
  fill(painter, tileAt(middle - away), 7, white(0.36));
  paintSpeaker(painter, middle - away, 12, white(0.6));
  fill(painter, tileAt(middle + away), 7, white(1));
  paintSpeaker(painter, middle + away, 13, "#128ea6");
  // Arrows in the corners that are free while the tiles rest.
  const double clear = std::abs(std::cos(std::numbers::pi * turn));
  painter.setPen(QPen(white(0.9 * clear * clear), 2.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.setBrush(Qt::NoBrush);
  for (int i = 0; i < 2; ++i) {
    painter.save();
    painter.translate(middle);
    painter.rotate(180.0 * i);
    painter.translate(-middle);
    painter.drawArc(QRectF(34, 12.5, 16, 16), 0, 90 * 16);
    painter.drawPolyline(QPolygonF({{46.6, 17.6}, {50, 21}, {53.4, 17.6}}));
    painter.restore();
  }
}

void paintSoundIconStep(QPainter& painter, double phase, const QColor&) {
  paintTile(painter, "#ffb650", "#f0721c");
  paintBar(painter, phase, "#d2560a", false);
}

void paintTrayIconStep(QPainter& painter, double phase, const QColor&) {
  paintTile(painter, "#ff86ac", "#dc3269");
  paintBar(painter, phase, "#c01f55", true);
}

void paintLoginItemStep(QPainter& painter, double phase, const QColor&) {
  paintTile(painter, "#6bd879", "#229a45");
  // A ring that leaves the sign and fades.
  const double reach = 16 + 11 * phase;
  painter.setPen(QPen(white(0.5 * std::sin(std::numbers::pi * phase)), 2));
  painter.setBrush(Qt::NoBrush);
  painter.drawEllipse(middle, reach, reach);
  painter.setPen(QPen(white(1), 4.2, Qt::SolidLine, Qt::RoundCap));
  painter.drawArc(QRectF(18, 19, 28, 28), 128 * 16, 284 * 16);
  painter.drawLine(QPointF(32, 14), QPointF(32, 29));
}

}  // namespace plemora
