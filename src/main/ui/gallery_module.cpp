#include <string>

#include "main/gallery/gallery.h"

extern "C" int plemoraRenderScreenshots(const std::string& folder) {
  return plemora::renderScreenshots(folder);
}
