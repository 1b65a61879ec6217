#pragma once

#include <QImage>

#include "main/gallery/gallery_world.h"
#include "main/gallery/wallpaper.h"

namespace plemora {

/// The panel of that world with its glass, hanging below the bar of a desktop, at that many pixels
/// to the point. room: the height that the panel may have at most, in points; 0: any. An empty
/// picture when the panel could not be built.
QImage panelPicture(GalleryWorld& world, Wallpaper wallpaper, double scale, double room);

}  // namespace plemora
