#include "views/setup_scene.h"

#include "views/setup_binding.h"

namespace plemora {

SetupScene::SetupScene(SetupView& view, Appearance& appearance)
    : ComponentScene("SetupView", std::make_unique<SetupBinding>(view, appearance)) {}

void SetupScene::setOpaque(bool isOpaque) {
  binding().setOpaque(isOpaque);
}

}  // namespace plemora
