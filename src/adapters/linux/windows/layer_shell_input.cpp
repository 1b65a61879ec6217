#include "adapters/linux/windows/layer_shell_input.h"

#include "adapters/linux/windows/screen_space.h"

namespace plemora {

Point LayerShellInput::pointerLocation() {
  return pointer ? ScreenSpace::current().toGlobal(*pointer) : QtInputEvents::pointerLocation();
}

void LayerShellInput::pressedElsewhere(const InputEvent& event) {
  for (const auto& entry : global_.wanting(event.type)) {
    entry->handler(event);
  }
}

}  // namespace plemora
