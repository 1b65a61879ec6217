#include "main/gallery/setup_picture.h"

#include <QPainter>
#include <QQuickItem>
#include <cmath>

#include "adapters/stage/memory_defaults.h"
#include "adapters/stage/scripted_appearance.h"
#include "adapters/stage/scripted_system_info.h"
#include "adapters/stage/virtual_clock.h"
#include "adapters/stage/virtual_main_queue.h"
#include "main/gallery/gallery_glass.h"
#include "main/gallery/setup_states.h"
#include "main/gallery/wallpaper.h"
#include "skin/look/control_center_look.h"
#include "views/callout_scene.h"
#include "views/helper_scene.h"
#include "views/ripple_scene.h"
#include "views/setup_scene.h"

namespace plemora {

namespace {

constexpr int margin = 40;  // of desktop around a window
constexpr double helperRadius = 20;
constexpr double calloutRadius = 14;

/// The world of a picture: nothing moves in it.
struct Studio {
  explicit Studio(bool isDark) : appearance(isDark) { appearance.wantsStillness = true; }

  VirtualClock clock;
  VirtualMainQueue queue{clock};
  MemoryDefaults defaults;
  ScriptedSystemInfo system;
  ScriptedAppearance appearance;
  ControlCenterLook look{defaults, system, appearance};
};

QSize fitting(ComponentScene& scene) {
  return {static_cast<int>(std::ceil(scene.fittingWidth())),
          static_cast<int>(std::ceil(scene.fittingHeight()))};
}

QImage setupPicture(const SetupPage& page, bool isDark, double scale) {
  Studio studio(isDark);
  SetupView view;
  view.page.set(page);
  SetupScene scene(view, studio.appearance);
  scene.setOpaque(true);
  scene.setVisible(true);
  if (scene.item() == nullptr) {
    return {};
  }
  const QSize size = fitting(scene);
  scene.item()->setSize(size);
  return renderItems({scene.item()}, size, scale);
}

QImage glassPicture(ComponentScene& scene, Studio& studio, Wallpaper wallpaper, double radius,
                    double scale) {
  scene.setVisible(true);
  if (scene.item() == nullptr) {
    return {};
  }
  const GlassPlace place{{margin, barHeight + 14}, fitting(scene), radius};
  QImage picture = wallpaperImage(
      wallpaper, {place.size.width() + 2 * margin, place.size.height() + place.origin.y() + margin},
      scale);
  drawOnGlass(picture, scale, place, *scene.item(), studio.look, studio.queue,
              [&studio] { studio.queue.drain(); });
  return picture;
}

QImage ripplePicture(Wallpaper wallpaper, double scale) {
  Studio studio(true);
  RippleScene scene(studio.appearance);
  scene.setVisible(true);
  if (scene.item() == nullptr) {
    return {};
  }
  const QSize size = fitting(scene);
  QImage picture = wallpaperImage(wallpaper, {2 * margin + size.width(), 100}, scale);
  scene.item()->setSize(size);
  QPainter(&picture).drawImage(QPointF(margin, barHeight / 2.0 - size.height() / 2.0) * scale,
                               renderItems({scene.item()}, size, scale));
  return picture;
}

QImage calloutPicture(Wallpaper wallpaper, double scale) {
  Studio studio(true);
  CalloutView view{.title = "Your new Sound menu",
                   .line = "App volumes, outputs and the master slider.",
                   .buttonTitle = "Open",
                   .buttonSymbol = "arrow.up",
                   .onOpen = {}};
  CalloutScene scene(view, studio.appearance);
  return glassPicture(scene, studio, wallpaper, calloutRadius, scale);
}

QImage helperPicture(const HelperPage& page, Wallpaper wallpaper, double scale) {
  Studio studio(true);
  HelperView view;
  view.page.set(page);
  HelperScene scene(view, studio.appearance);
  return glassPicture(scene, studio, wallpaper, helperRadius, scale);
}

}  // namespace

bool drawSetup(double scale, const KeepPicture& keep) {
  const QString at = scale == 1 ? "" : QString("@%1x").arg(scale);
  for (const bool isDark : {false, true}) {
    const QString suffix = (isDark ? "-dark" : "-light") + at;
    for (const auto& [name, page] : setupPages()) {
      if (!keep(QString::fromStdString(name) + suffix, setupPicture(page, isDark, scale))) {
        return false;
      }
    }
  }
  for (const auto& [name, page] : helperPages()) {
    if (!keep(QString::fromStdString(name) + "-colorful" + at,
              helperPicture(page, Wallpaper::colorful, scale))) {
      return false;
    }
  }
  for (const Wallpaper wallpaper : {Wallpaper::colorful, Wallpaper::light}) {
    const QString suffix = (wallpaper == Wallpaper::light ? "-light" : "-colorful") + at;
    if (!keep("callout" + suffix, calloutPicture(wallpaper, scale)) ||
        !keep("ripple" + suffix, ripplePicture(wallpaper, scale))) {
      return false;
    }
  }
  return true;
}

}  // namespace plemora
