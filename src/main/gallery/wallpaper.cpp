#include "main/gallery/wallpaper.h"

#include <QFont>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>
#include <cmath>

#include "views/symbol_image.h"

namespace plemora {

namespace {

void glow(QPainter& painter, QPointF center, double radius, const QColor& color) {
  QRadialGradient gradient(center, radius);
  QColor clear = color;
  clear.setAlpha(0);
  gradient.setColorAt(0, color);
  gradient.setColorAt(1, clear);
  painter.fillRect(QRectF(center.x() - radius, center.y() - radius, 2 * radius, 2 * radius),
                   gradient);
}

void paintColorful(QPainter& painter, const QRectF& all) {
  QLinearGradient sky(all.topLeft(), all.bottomRight());
  sky.setColorAt(0, QColor("#2b1a6b"));
  sky.setColorAt(0.5, QColor("#7a2f8f"));
  sky.setColorAt(1, QColor("#f0653f"));
  painter.fillRect(all, sky);
  const double size = std::max(all.width(), all.height());
  glow(painter, {all.width() * 0.15, all.height() * 0.75}, size * 0.55, QColor("#18b6d9"));
  glow(painter, {all.width() * 0.85, all.height() * 0.15}, size * 0.45, QColor("#ff4f8b"));
  glow(painter, {all.width() * 0.7, all.height() * 0.9}, size * 0.4, QColor("#ffc54a"));
}

void paintLight(QPainter& painter, const QRectF& all) {
  QLinearGradient sky(all.topLeft(), all.bottomLeft());
  sky.setColorAt(0, QColor("#dfeaf5"));
  sky.setColorAt(1, QColor("#fdf6ec"));
  painter.fillRect(all, sky);
  // A few hills, so that the blur has edges to soften.
  const QColor colors[] = {"#c9dbe8", "#a9c6d4", "#e4c9a8"};
  for (int i = 0; i < 3; ++i) {
    QPainterPath hill(QPointF(0, all.height()));
    for (double x = 0; x <= all.width(); x += 4) {
      const double wave = std::sin(x / (70 + 25 * i) + i * 2.1) * (18 + 8 * i);
      hill.lineTo(x, all.height() * (0.45 + 0.18 * i) + wave);
    }
    hill.lineTo(all.width(), all.height());
    painter.fillPath(hill, colors[i]);
  }
}

void paintBar(QPainter& painter, double width, Wallpaper wallpaper) {
  const bool isLight = wallpaper == Wallpaper::light;
  painter.fillRect(QRectF(0, 0, width, barHeight),
                   isLight ? QColor(255, 255, 255, 150) : QColor(10, 8, 25, 120));
  QFont font("Inter");
  font.setPixelSize(13);
  font.setWeight(QFont::Medium);
  painter.setFont(font);
  painter.setPen(isLight ? QColor("#1d1d1f") : QColor(Qt::white));
  painter.drawText(QRectF(0, 0, width - 14, barHeight), Qt::AlignRight | Qt::AlignVCenter, "9:41");
}

}  // namespace

QImage wallpaperImage(Wallpaper wallpaper, QSize points, double scale) {
  QImage image(points * scale, QImage::Format_ARGB32_Premultiplied);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(scale, scale);
  const QRectF all({0, 0}, QSizeF(points));
  if (wallpaper == Wallpaper::colorful) {
    paintColorful(painter, all);
  } else {
    paintLight(painter, all);
  }
  paintBar(painter, all.width(), wallpaper);
  // The item that the panel hangs below.
  const int side = static_cast<int>(18 * scale);
  const QImage symbol =
      symbolImage({.name = "speaker.wave.3.fill",
                   .variableValue = 0.62,
                   .color = wallpaper == Wallpaper::light ? QColor("#1d1d1f") : QColor(Qt::white),
                   .pixels = {side, side}});
  painter.drawImage(QRectF(all.width() / 2 - 9, 5, 18, 18), symbol);
  return image;
}

QImage tileIcon(const QString& symbol, double hue, int side) {
  QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  const double inset = side * 0.05;
  const QRectF tile(inset, inset, side - 2 * inset, side - 2 * inset);
  const auto turn = static_cast<float>(hue);
  QLinearGradient gradient(tile.topLeft(), tile.bottomLeft());
  gradient.setColorAt(0, QColor::fromHsvF(turn, 0.62f, 1.0f));
  gradient.setColorAt(1, QColor::fromHsvF(turn, 0.85f, 0.78f));
  painter.setPen(Qt::NoPen);
  painter.setBrush(gradient);
  painter.drawRoundedRect(tile, tile.width() * 0.23, tile.width() * 0.23);
  const int glyph = static_cast<int>(side * 0.62);
  painter.drawImage(
      QPointF((side - glyph) / 2.0, (side - glyph) / 2.0),
      symbolImage(
          {.name = symbol, .variableValue = {}, .color = Qt::white, .pixels = {glyph, glyph}}));
  return image;
}

}  // namespace plemora
