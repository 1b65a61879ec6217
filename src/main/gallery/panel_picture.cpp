#include "main/gallery/panel_picture.h"

#include <QQuickItem>
#include <algorithm>
#include <cmath>

#include "main/gallery/gallery_glass.h"
#include "menubar/status_item_controller.h"
#include "views/panel_scene.h"

namespace plemora {

namespace {

constexpr int margin = 44;  // of desktop around the panel
constexpr int gap = 6;      // between the bar and the panel

}  // namespace

QImage panelPicture(GalleryWorld& world, Wallpaper wallpaper, double scale, double room) {
  PanelScene scene(world.view(), world.look());
  scene.setVisible(true);
  if (scene.item() == nullptr) {
    return {};
  }
  const double fitting = scene.fittingHeight();
  const double height = std::ceil(room > 0 ? std::min(fitting, room) : fitting);
  const GlassPlace place{.origin = {margin, barHeight + gap},
                         .size = {308, static_cast<int>(height)},
                         .cornerRadius = StatusItemController::cornerRadius};
  const QSize desktop(place.size.width() + 2 * margin,
                      place.size.height() + place.origin.y() + margin);
  QImage picture = wallpaperImage(wallpaper, desktop, scale);
  drawOnGlass(picture, scale, place, *scene.item(), world.look(), world.mainQueue(),
              [&world] { world.settle(); });
  return picture;
}

}  // namespace plemora
