#include <QGuiApplication>
#include <memory>

#include "adapters/linux/dbus/mixer_names.h"
#include "adapters/linux/windows/linux_desktop.h"
#include "main/desktop_ui.h"
#include "main/gallery/gallery.h"
#include "main/ui/linux_panel.h"

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
    return plemora::renderScreenshots(folder);
  }
};

}  // namespace

}  // namespace plemora

extern "C" plemora::DesktopUi* plemoraDesktopUi() {
  static plemora::UiModule module;
  return &module;
}
