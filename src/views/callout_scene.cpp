#include "views/callout_scene.h"

#include "views/callout_binding.h"

namespace plemora {

CalloutScene::CalloutScene(CalloutView& view, Appearance& appearance)
    : ComponentScene("CalloutView", std::make_unique<CalloutBinding>(view, appearance)) {}

}  // namespace plemora
