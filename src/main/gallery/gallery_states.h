#pragma once

#include <string>
#include <vector>

#include "main/gallery/gallery_world.h"

namespace plemora {

/// The states that are worth a look. Icons of the apps are drawn into the given folder.
std::vector<GalleryState> galleryStates(const std::string& iconFolder);

}  // namespace plemora
