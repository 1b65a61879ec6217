#include "main/stage/stage_wallpaper.h"

#include <QFont>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <cstdint>

namespace plemora {

namespace {

constexpr NamedWallpaper wallpapers[] = {
    {"photograph", StageWallpaper::photograph}, {"gradient", StageWallpaper::gradient},
    {"saturated", StageWallpaper::saturated},   {"plain", StageWallpaper::plain},
    {"black", StageWallpaper::black},           {"white", StageWallpaper::white},
    {"noisy", StageWallpaper::noisy},           {"text", StageWallpaper::text},
};

/// Bits that look random and are the same at every run.
std::uint32_t scatter(std::uint32_t seed) {
  seed ^= seed >> 16;
  seed *= 0x7feb352dU;
  seed ^= seed >> 15;
  seed *= 0x846ca68bU;
  return seed ^ (seed >> 16);
}

double fraction(std::uint32_t seed) {
  return scatter(seed) / 4294967296.0;
}

void glow(QPainter& painter, QPointF center, double radius, const QColor& color) {
  QRadialGradient gradient(center, radius);
  // It ends softly: a straight slope would show a rim.
  for (double place = 0; place <= 1; place += 0.125) {
    QColor step = color;
    step.setAlphaF(color.alphaF() * static_cast<float>(std::pow(1 - place, 2)));
    gradient.setColorAt(place, step);
  }
  painter.fillRect(QRectF(center.x() - radius, center.y() - radius, 2 * radius, 2 * radius),
                   gradient);
}

void shade(QPainter& painter, const QRectF& rect, std::initializer_list<const char*> colors) {
  QLinearGradient gradient(rect.topLeft(), rect.bottomLeft());
  double place = 0;
  for (const char* color : colors) {
    gradient.setColorAt(std::min(place, 1.0), QColor(color));
    place += 1.0 / static_cast<double>(colors.size() - 1);
  }
  painter.fillRect(rect, gradient);
}

void paintGradient(QPainter& painter, const QRectF& all) {
  QLinearGradient sky(all.topLeft(), all.bottomRight());
  sky.setColorAt(0, QColor("#1b3a8f"));
  sky.setColorAt(0.45, QColor("#6a5ac8"));
  sky.setColorAt(0.75, QColor("#d977a8"));
  sky.setColorAt(1, QColor("#ffb88a"));
  painter.fillRect(all, sky);
  const double size = all.width();
  glow(painter, {size * 0.82, all.height() * 0.1}, size * 0.42, QColor(90, 200, 250, 190));
  glow(painter, {size * 0.1, all.height() * 0.95}, size * 0.4, QColor(255, 120, 160, 170));
}

void paintSaturated(QPainter& painter, const QRectF& all) {
  const QColor colors[] = {"#ff0033", "#ffcc00", "#00d84a", "#0066ff", "#d400ff", "#00e5ff"};
  constexpr int columns = 8;
  constexpr int rows = 5;
  const double width = all.width() / columns;
  const double height = all.height() / rows;
  for (int row = 0; row < rows; ++row) {
    for (int column = 0; column < columns; ++column) {
      painter.fillRect(QRectF(column * width, row * height, width + 1, height + 1),
                       colors[(column + 2 * row) % 6]);
    }
  }
}

void paintNoise(QPainter& painter, const QRectF& all) {
  QImage noise(all.size().toSize(), QImage::Format_RGB32);
  for (int y = 0; y < noise.height(); ++y) {
    auto* row = reinterpret_cast<QRgb*>(noise.scanLine(y));
    for (int x = 0; x < noise.width(); ++x) {
      row[x] = 0xff000000U | scatter(static_cast<std::uint32_t>(y * 4099 + x));
    }
  }
  painter.drawImage(all, noise);
}

void paintText(QPainter& painter, const QRectF& all) {
  painter.fillRect(all, QColor("#fbfbf8"));
  QFont font("Inter");
  font.setPixelSize(15);
  painter.setFont(font);
  painter.setPen(QColor("#161616"));
  const QString words =
      "The quick brown fox jumps over the lazy dog while five boxing wizards watch. Sphinx of "
      "black quartz, judge my vow; pack my box with a dozen jugs of honey. ";
  const QString line = words + words + words + words;
  for (int i = 0; 22.0 * i < all.height(); ++i) {
    const int start = (i * 37) % static_cast<int>(words.size());
    painter.drawText(QRectF(14, 22.0 * i, all.width() + 400, 22), Qt::AlignLeft | Qt::AlignVCenter,
                     line.mid(start));
  }
}

/// A mountain ridge: a few waves of ever finer grain.
QPainterPath ridge(const QRectF& all, double base, double height, std::uint32_t seed) {
  QPainterPath path(QPointF(0, all.height()));
  for (double x = 0; x <= all.width() + 2; x += 2) {
    double y = 0;
    double size = height;
    double length = 430;
    for (std::uint32_t octave = 0; octave < 6; ++octave) {
      const double shift = 40 * fraction(seed * 31 + octave);
      y += size * (1 - 2 * std::abs(std::sin(x / length + shift)));
      size *= 0.48;
      length *= 0.43;
    }
    path.lineTo(x, all.height() * base + y);
  }
  path.lineTo(all.width() + 2, all.height());
  path.closeSubpath();
  return path;
}

void paintPhotograph(QPainter& painter, const QRectF& all) {
  shade(painter, {0, 0, all.width(), all.height() * 0.7},
        {"#14254d", "#2f4f86", "#7b83ad", "#e0a08c", "#ffc98a"});
  for (std::uint32_t i = 0; i < 90; ++i) {
    const double light = fraction(3 * i + 2);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(255, 255, 255, static_cast<int>(30 + 130 * light * light)));
    const double side = 0.5 + light;
    painter.drawEllipse(QRectF(all.width() * fraction(3 * i),
                               all.height() * 0.34 * fraction(3 * i + 1), side, side));
  }
  glow(painter, {all.width() * 0.66, all.height() * 0.58}, all.width() * 0.42,
       QColor(255, 226, 160, 240));
  const QColor colors[] = {"#8f86a3", "#5f5f86", "#3c4669", "#232e4a"};
  for (int i = 0; i < 4; ++i) {
    QLinearGradient haze(0, all.height() * (0.4 + 0.08 * i), 0, all.height() * 0.8);
    haze.setColorAt(0, colors[i]);
    haze.setColorAt(1, colors[i].lighter(i < 3 ? 135 : 105));
    painter.fillPath(ridge(all, 0.5 + 0.07 * i, 66 - 8 * i, 7 + static_cast<std::uint32_t>(i)),
                     haze);
  }
  const QRectF lake(0, all.height() * 0.82, all.width(), all.height() * 0.18);
  shade(painter, lake, {"#4e5a80", "#2c3a5e", "#141d36"});
  for (std::uint32_t i = 0; i < 240; ++i) {
    const double y = lake.top() + lake.height() * fraction(5 * i);
    const double near = (y - lake.top()) / lake.height();
    const double x = all.width() * (0.66 + (fraction(5 * i + 1) - 0.5) * (0.2 + 0.5 * near));
    const double width = 6 + 46 * fraction(5 * i + 2) * (0.3 + near);
    painter.fillRect(QRectF(x - width / 2, y, width, 1),
                     QColor(255, 214, 160, static_cast<int>(70 * (1 - 0.6 * near))));
  }
}

}  // namespace

std::span<const NamedWallpaper> stageWallpapers() {
  return wallpapers;
}

std::optional<StageWallpaper> stageWallpaperNamed(std::string_view name) {
  const auto* found = std::ranges::find(wallpapers, name, &NamedWallpaper::name);
  return found != std::end(wallpapers) ? std::optional(found->wallpaper) : std::nullopt;
}

QImage paintWallpaper(StageWallpaper wallpaper, QSize points, double scale) {
  QImage image(points * scale, QImage::Format_ARGB32_Premultiplied);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(scale, scale);
  const QRectF all({0, 0}, QSizeF(points));
  switch (wallpaper) {
    case StageWallpaper::plain:
      painter.fillRect(all, QColor("#3d6a94"));
      break;
    case StageWallpaper::black:
      painter.fillRect(all, Qt::black);
      break;
    case StageWallpaper::white:
      painter.fillRect(all, Qt::white);
      break;
    case StageWallpaper::noisy:
      paintNoise(painter, all);
      break;
    case StageWallpaper::saturated:
      paintSaturated(painter, all);
      break;
    case StageWallpaper::gradient:
      paintGradient(painter, all);
      break;
    case StageWallpaper::text:
      paintText(painter, all);
      break;
    case StageWallpaper::photograph:
      paintPhotograph(painter, all);
      break;
  }
  return image;
}

}  // namespace plemora
