#include "views/ripple_scene.h"

#include "views/view_binding.h"

namespace plemora {

RippleScene::RippleScene(Appearance& appearance)
    : ComponentScene("RippleView", std::make_unique<ViewBinding>(appearance)) {}

}  // namespace plemora
