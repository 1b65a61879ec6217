#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>
#include <QSvgRenderer>
#include <algorithm>
#include <cmath>
#include <numbers>

#include "views/figures.h"

namespace plemora {

namespace {

constexpr double fullTurn = 2 * std::numbers::pi;

QColor faded(QColor color, double alpha) {
  color.setAlphaF(static_cast<float>(color.alphaF() * std::clamp(alpha, 0.0, 1.0)));
  return color;
}

/// How far a part of the whole has come that lasts from one phase to another.
double partOf(double phase, double from, double to) {
  return std::clamp((phase - from) / (to - from), 0.0, 1.0);
}

/// Goes a little too far and comes back.
double sprung(double part) {
  constexpr double excess = 1.4;
  const double left = part - 1;
  return 1 + left * left * ((excess + 1) * left + excess);
}

/// A disc with a check mark that is drawn from its left end.
void paintCheck(QPainter& painter, const QPointF& center, double radius, double drawn) {
  QLinearGradient ground(center.x(), center.y() - radius, center.x(), center.y() + radius);
  ground.setColorAt(0, QColor("#4cd964"));
  ground.setColorAt(1, QColor("#23a845"));
  painter.setPen(Qt::NoPen);
  painter.setBrush(ground);
  painter.drawEllipse(center, radius, radius);
  const QPointF start = center + QPointF(-0.42, 0.04) * radius;
  const QPointF corner = center + QPointF(-0.12, 0.35) * radius;
  const QPointF end = center + QPointF(0.44, -0.33) * radius;
  const double firstPart = 0.36;  // of its length
  if (drawn <= 0) {
    return;
  }
  const double down = partOf(drawn, 0, firstPart);
  const double up = partOf(drawn, firstPart, 1);
  QPainterPath path(start);
  path.lineTo(start + (corner - start) * down);
  if (up > 0) {
    path.lineTo(corner + (end - corner) * up);
  }
  painter.setPen(QPen(Qt::white, radius * 0.17, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.setBrush(Qt::NoBrush);
  painter.drawPath(path);
}

void paintRing(QPainter& painter, double radius, double width, const QColor& color) {
  painter.setPen(QPen(color, width));
  painter.setBrush(Qt::NoBrush);
  painter.drawEllipse(QPointF(32, 32), radius, radius);
}

struct Confetto {
  double angle;     // degrees, clockwise from the right
  double distance;  // from the middle of the tile
  double size;
  bool isLong;
  const char* color;
};

constexpr Confetto confetti[] = {
    {-162, 104, 4.5, false, "#ff9f0a"}, {-150, 82, 4, true, "#30b85c"},
    {-133, 92, 5, false, "#bf5af2"},    {-117, 72, 4, true, "#0a84ff"},
    {-98, 78, 3.5, false, "#ff375f"},   {-80, 76, 4.5, true, "#ffd60a"},
    {-62, 74, 4, false, "#30b85c"},     {-47, 94, 4.5, true, "#ff375f"},
    {-31, 84, 5, false, "#0a84ff"},     {-17, 106, 4, true, "#bf5af2"},
    {2, 126, 4, false, "#ffd60a"},      {17, 100, 4.5, true, "#ff9f0a"},
    {34, 92, 4, false, "#30b85c"},      {146, 94, 4, true, "#ff375f"},
    {163, 102, 4.5, false, "#0a84ff"},  {179, 126, 4, true, "#ff9f0a"},
};

void paintConfetti(QPainter& painter, const QPointF& center, double thrown) {
  for (const Confetto& one : confetti) {
    const double angle = one.angle / 360 * fullTurn;
    const double away = one.distance * (0.45 + 0.55 * thrown);
    painter.save();
    painter.translate(center + QPointF(std::cos(angle), std::sin(angle)) * away);
    painter.rotate(one.angle + 140 * (1 - thrown));
    painter.setPen(Qt::NoPen);
    painter.setBrush(faded(QColor(one.color), thrown * 1.6));
    const double length = one.isLong ? one.size * 2.4 : one.size * 1.5;
    const double height = one.isLong ? one.size * 0.9 : one.size * 1.5;
    painter.drawRoundedRect(QRectF(-length / 2, -height / 2, length, height), height / 2,
                            height / 2);
    painter.restore();
  }
}

}  // namespace

void paintSpinner(QPainter& painter, double phase, const QColor& color) {
  constexpr int spokes = 8;
  painter.translate(12, 12);
  for (int i = 0; i < spokes; ++i) {
    // The spoke that the phase has just passed is the strongest.
    const double age = std::fmod(phase - static_cast<double>(i) / spokes + 1, 1.0);
    painter.save();
    painter.rotate(360.0 * i / spokes);
    painter.setPen(QPen(faded(color, 0.9 - 0.7 * age), 2.2, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(0, -5), QPointF(0, -9));
    painter.restore();
  }
}

void paintSuccess(QPainter& painter, double phase, const QColor&) {
  const QPointF center(36, 36);
  const double ring = partOf(phase, 0.25, 1);
  painter.setPen(QPen(faded(QColor("#4cd964"), 0.55 * (1 - ring)), 2));
  painter.setBrush(Qt::NoBrush);
  painter.drawEllipse(center, 26 + 9 * ring, 26 + 9 * ring);
  paintCheck(painter, center, 27 * sprung(partOf(phase, 0, 0.45)), partOf(phase, 0.35, 0.85));
}

void paintDone(QPainter& painter, double, const QColor&) {
  paintCheck(painter, {12, 12}, 11, 1);
}

void paintRipple(QPainter& painter, double phase, const QColor& color) {
  constexpr int rings = 2;
  for (int i = 0; i < rings; ++i) {
    const double age = std::fmod(phase + static_cast<double>(i) / rings, 1.0);
    const double strength = std::sin(std::numbers::pi * std::sqrt(age));
    paintRing(painter, 11 + 19 * age, 3 - 1.5 * age, faded(color, 0.95 * strength));
  }
}

void paintStillRipple(QPainter& painter, double, const QColor& color) {
  paintRing(painter, 27, 4, faded(color, 0.25));
  paintRing(painter, 22, 2.5, faded(color, 0.9));
}

void paintAllSet(QPainter& painter, double phase, const QColor&) {
  constexpr double haloRadius = 78;
  const QPointF center(150, 90);
  const double glow = partOf(phase, 0, 0.5);
  QRadialGradient halo(center, haloRadius);
  halo.setColorAt(0, faded(QColor("#3d7bff"), 0.38 * glow));
  halo.setColorAt(1, faded(QColor("#3d7bff"), 0));
  painter.setPen(Qt::NoPen);
  painter.setBrush(halo);
  painter.drawEllipse(center, haloRadius, haloRadius);
  paintConfetti(painter, center, sprung(partOf(phase, 0.15, 0.8)));

  const double side = 112 * (0.8 + 0.2 * sprung(partOf(phase, 0, 0.45)));
  QSvgRenderer icon(QString(":/plemora/program/com.quorvane.mixer.svg"));
  icon.render(&painter, QRectF(center.x() - side / 2, center.y() - side / 2, side, side));

  const double badge = partOf(phase, 0.35, 0.7);
  if (badge > 0) {
    const QPointF corner = center + QPointF(42, 38);
    const double radius = 19 * sprung(badge);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    painter.drawEllipse(corner, radius + 3, radius + 3);
    paintCheck(painter, corner, radius, partOf(phase, 0.6, 1));
  }
}

}  // namespace plemora
