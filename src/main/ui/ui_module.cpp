#include <QEvent>
#include <QFont>
#include <QGuiApplication>
#include <QSessionManager>
#include <cstdio>
#include <memory>
#include <string>

#include "adapters/linux/dbus/mixer_names.h"
#include "adapters/linux/windows/linux_desktop.h"
#include "main/desktop_ui.h"
#include "main/module_loader.h"
#include "main/ui/linux_panel.h"

namespace plemora {

namespace {

/// Ends as the program does by every other way when the desktop tells it to quit, at log-out say:
/// the toolkit would have its windows closed first, which they refuse.
class Application : public QGuiApplication {
 public:
  Application(int& argc, char** argv) : QGuiApplication(argc, argv) {
    // Login items are what brings it back, not the session's memory of what ran.
    connect(
        this, &QGuiApplication::commitDataRequest, this,
        [](QSessionManager& session) { session.setRestartHint(QSessionManager::RestartNever); },
        Qt::DirectConnection);
  }

 protected:
  bool event(QEvent* event) override {
    if (event->type() == QEvent::Quit) {
      exit();
      return true;
    }
    return QGuiApplication::event(event);
  }
};

class UiModule : public DesktopUi {
 public:
  std::unique_ptr<QCoreApplication> makeApplication(int& argc, char** argv) override {
    LinuxDesktop::prepare();
    auto application = std::make_unique<Application>(argc, argv);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    QGuiApplication::setDesktopFileName(mixerBusName);
    // That of all the panel's texts: what names none need not load another.
    QGuiApplication::setFont(QFont("Inter"));
    return application;
  }

  std::unique_ptr<Panel> makePanel(LinuxProgram& program, const QDBusConnection& bus,
                                   const std::string& version) override {
    return std::make_unique<LinuxPanel>(program, bus, version);
  }

  int renderScreenshots(const std::string& folder) override {
    std::string problem;
    using Entry = int (*)(const std::string&);
    const auto render =
        reinterpret_cast<Entry>(loadModule("plemora-gallery", "plemoraRenderScreenshots", problem));
    if (render == nullptr) {
      std::fprintf(stderr, "plemora: the pictures cannot be drawn: %s\n", problem.c_str());
      return 1;
    }
    return render(folder);
  }
};

}  // namespace

}  // namespace plemora

extern "C" plemora::DesktopUi* plemoraDesktopUi() {
  static plemora::UiModule module;
  return &module;
}
