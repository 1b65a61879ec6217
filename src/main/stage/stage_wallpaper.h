#pragma once

#include <QImage>
#include <QSize>
#include <optional>
#include <span>
#include <string_view>

namespace plemora {

/// Desktops of our own painting, chosen to be hard on glass in different ways.
enum class StageWallpaper { plain, black, white, noisy, saturated, gradient, text, photograph };

struct NamedWallpaper {
  std::string_view name;
  StageWallpaper wallpaper;
};

/// All of them by the names that users give.
std::span<const NamedWallpaper> stageWallpapers();
std::optional<StageWallpaper> stageWallpaperNamed(std::string_view name);

/// A desktop of that many points at that many pixels to the point; the same at every call.
QImage paintWallpaper(StageWallpaper wallpaper, QSize points, double scale);

}  // namespace plemora
