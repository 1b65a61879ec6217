#include "main/ui/panel_module.h"

#include <memory>
#include <utility>

#include "adapters/linux/windows/linux_panels.h"
#include "views/panel_scene.h"
#include "views/setup_scene.h"

// In a library that the views need in any case. Loaded along with the others it is there at once;
// else the QML engine looks through folders for it while the first click waits.
extern void qml_register_types_QtQml_WorkerScript();

namespace plemora {

namespace {

[[maybe_unused]] const volatile auto workerScript = &qml_register_types_QtQml_WorkerScript;

class LinuxPanelParts : public PanelParts {
 public:
  LinuxPanelParts(LinuxDesktop& desktop, MainQueue& queue) : panels_(desktop, queue) {}

  Windows& windows() override { return panels_; }

  std::shared_ptr<HostedView> makeScene(PanelView& view, const ControlCenterLook& look,
                                        ScreenMapping toScreen) override {
    auto scene = std::make_shared<PanelScene>(view, look);
    scene->setScreenMapping(std::move(toScreen));
    return scene;
  }

  std::shared_ptr<HostedView> makeSetup(SetupView& view, Appearance& appearance) override {
    auto scene = std::make_shared<SetupScene>(view, appearance);
    scene->setOpaque(true);
    return scene;
  }

 private:
  LinuxPanels panels_;
};

class LinuxPanelModule : public PanelModule {
 public:
  std::unique_ptr<PanelParts> makeParts(LinuxDesktop& desktop, MainQueue& queue) override {
    return std::make_unique<LinuxPanelParts>(desktop, queue);
  }
};

}  // namespace

}  // namespace plemora

extern "C" plemora::PanelModule* plemoraPanelModule() {
  static plemora::LinuxPanelModule module;
  return &module;
}
