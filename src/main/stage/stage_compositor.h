#pragma once

#include <QImage>
#include <QRect>
#include <QRegion>
#include <cstdint>
#include <map>
#include <vector>

#include "adapters/stage/desktop/stage_desktop.h"
#include "main/stage/drawing.h"
#include "main/stage/glass_windows.h"
#include "main/stage/stage_wallpaper.h"

namespace plemora {

/// Puts the picture of a screen together from the windows that the window server knows of, from
/// back to front, with glass that sees what is below it. Remembers what it has painted: a frame
/// costs what has changed in it, and everything in front of that. GUI thread.
class StageCompositor {
 public:
  /// Both outlive the compositor.
  StageCompositor(StageDesktop& desktop, GlassWindows& windows)
      : desktop_(desktop), windows_(windows) {}

  void setWallpaper(StageWallpaper wallpaper) { wallpaper_ = wallpaper; }
  /// Whether the pointer is drawn; where a real one moves over the picture there is no need.
  void setShowsPointer(bool showsPointer) { showsPointer_ = showsPointer; }

  /// That screen as it is now, at its scale, valid until the next call; empty when there is no such
  /// screen.
  const QImage& picture(int screen);
  /// What of that picture has changed since this was last asked, in pixels.
  QRegion takeDamage(int screen);

  /// How many windows have been painted so far, to see that resting costs nothing.
  int paintCount() const { return paintCount_; }

 private:
  /// What stands for one window in a picture.
  struct Sheet {
    std::int64_t number = 0;
    Rect frame;  ///< of a window of the program, points, y down
    double alpha = 1;
    Drawing drawing;                ///< of all other windows
    GlassWindow* window = nullptr;  ///< of the program

    bool operator==(const Sheet&) const = default;
  };
  struct Painted {
    Sheet sheet;
    QRect place;   ///< pixels of the picture
    QImage below;  ///< what was there before
  };
  struct Canvas {
    Screen screen;
    StageWallpaper wallpaper{};
    Point origin;  ///< points, y down
    QImage picture;
    std::vector<Painted> painted;  ///< from back to front
    QRegion damage;
  };

  void prepare(Canvas& canvas, const Screen& screen);
  std::vector<Sheet> sheets();
  static bool isAsPainted(const Sheet& sheet, const Painted& painted);
  QRect placeOf(const Sheet& sheet, const Canvas& canvas) const;
  void unpaint(Canvas& canvas, std::size_t count);
  void paint(Canvas& canvas, Sheet sheet, bool isBelowTheSame);
  void paintWindow(const Canvas& canvas, const Sheet& sheet, const QRect& place,
                   bool isBelowTheSame, QImage& layer);

  StageDesktop& desktop_;
  GlassWindows& windows_;
  StageWallpaper wallpaper_ = StageWallpaper::photograph;
  bool showsPointer_ = true;
  std::map<int, Canvas> canvases_;                     // by screen
  std::map<const GlassWindow*, int> backdropScreens_;  // whose picture its glass last saw
  QImage nothing_;
  int paintCount_ = 0;
};

}  // namespace plemora
