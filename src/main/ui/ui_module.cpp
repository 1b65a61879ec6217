#include <QGuiApplication>
#include <cstdio>
#include <memory>
#include <string>

#include "adapters/linux/dbus/mixer_names.h"
#include "adapters/linux/windows/linux_desktop.h"
#include "main/desktop_ui.h"
#include "main/ui/linux_panel.h"
#include "main/ui/panel_module.h"

namespace plemora {

namespace {

class UiModule : public DesktopUi {
 public:
  std::unique_ptr<QCoreApplication> makeApplication(int& argc, char** argv) override {
    LinuxDesktop::prepare();
    auto application = std::make_unique<QGuiApplication>(argc, argv);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    QGuiApplication::setDesktopFileName(mixerBusName);
    return application;
  }

  std::unique_ptr<Panel> makePanel(LinuxProgram& program, const QDBusConnection& bus,
                                   const std::string& version) override {
    return std::make_unique<LinuxPanel>(program, bus, version);
  }

  int renderScreenshots(const std::string& folder) override {
    std::string problem;
    PanelModule* module = loadPanelModule(problem);
    if (module == nullptr) {
      std::fprintf(stderr, "plemora: the panel cannot be loaded: %s\n", problem.c_str());
      return 1;
    }
    return module->renderScreenshots(folder);
  }
};

}  // namespace

}  // namespace plemora

extern "C" plemora::DesktopUi* plemoraDesktopUi() {
  static plemora::UiModule module;
  return &module;
}
