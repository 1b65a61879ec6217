#include "main/desktop_ui.h"

#include "main/module_loader.h"

namespace plemora {

DesktopUi* loadDesktopUi(std::string& problem) {
  using Entry = DesktopUi* (*)();
  const auto entry = reinterpret_cast<Entry>(loadModule("plemora-ui", "plemoraDesktopUi", problem));
  return entry != nullptr ? entry() : nullptr;
}

}  // namespace plemora
