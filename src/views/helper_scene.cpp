#include "views/helper_scene.h"

#include "views/helper_binding.h"

namespace plemora {

HelperScene::HelperScene(HelperView& view, Appearance& appearance)
    : ComponentScene("HelperView", std::make_unique<HelperBinding>(view, appearance)) {}

}  // namespace plemora
