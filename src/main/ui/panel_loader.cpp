#include "main/module_loader.h"
#include "main/ui/panel_module.h"

namespace plemora {

PanelModule* loadPanelModule(std::string& problem) {
  using Entry = PanelModule* (*)();
  const auto entry =
      reinterpret_cast<Entry>(loadModule("plemora-panel", "plemoraPanelModule", problem));
  return entry != nullptr ? entry() : nullptr;
}

}  // namespace plemora
