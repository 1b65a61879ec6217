#pragma once

#include <QImage>
#include <QSize>
#include <QString>

namespace plemora {

enum class Wallpaper { colorful, light };

/// A painted desktop of that many points with a bar at its top.
QImage wallpaperImage(Wallpaper wallpaper, QSize points, double scale);

/// Height of that bar, in points.
inline constexpr int barHeight = 28;

/// A picture for an app that has no icon of its own here: a symbol on a tile of that hue (0...1).
QImage tileIcon(const QString& symbol, double hue, int side);

}  // namespace plemora
