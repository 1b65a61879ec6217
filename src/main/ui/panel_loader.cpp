#include <QLibrary>

#include "main/module_loader.h"
#include "main/ui/panel_module.h"

namespace plemora {

namespace {

/// The scene's libraries look thousands of names up, nearly all of them in each other: they find
/// them sooner when they do not ask everything that the program has loaded before.
void loadSceneLibraries() {
#ifndef __SANITIZE_ADDRESS__  // stands in for names of the system's library
  QLibrary scene("Qt6Quick", 6);
  scene.setLoadHints(QLibrary::DeepBindHint);
  scene.load();  // where that fails, the module says why
#endif
}

}  // namespace

PanelModule* loadPanelModule(std::string& problem) {
  using Entry = PanelModule* (*)();
  loadSceneLibraries();
  const auto entry =
      reinterpret_cast<Entry>(loadModule("plemora-panel", "plemoraPanelModule", problem));
  return entry != nullptr ? entry() : nullptr;
}

}  // namespace plemora
