#include "adapters/linux/windows/linux_desktop.h"

#include <QGuiApplication>
#include <QQuickWindow>
#include <memory>
#include <utility>

#include "adapters/linux/windows/layer_shell_panels.h"
#include "adapters/linux/windows/linux_screens.h"
#include "adapters/linux/windows/qt_application.h"
#include "adapters/linux/windows/qt_display_links.h"
#include "adapters/linux/windows/qt_input_events.h"
#include "adapters/linux/windows/quick_windows.h"
#include "adapters/linux/windows/window_host.h"
#include "adapters/linux/windows/x11_backdrop.h"
#include "adapters/linux/windows/x11_connection.h"
#include "adapters/linux/windows/x11_input_events.h"
#include "adapters/linux/windows/x11_panels.h"
#include "adapters/linux/windows/x11_work_area.h"
#include "base/log.h"

namespace plemora {

namespace {

constexpr Logger logger("windows");

class NoBackdrop : public BackdropSource {
 public:
  Kind kind() override { return Kind::none; }
  BackdropImage capture(const Rect&) override { return {}; }
  [[nodiscard]] Subscription observe(std::function<void()>) override { return {}; }
};

/// What an X display has beyond what the toolkit offers everywhere.
struct X11Parts {
  explicit X11Parts(std::unique_ptr<X11Connection> opened, LinuxScreens& screens)
      : connection(std::move(opened)),
        workArea(*connection, [&screens] { screens.refresh(); }),
        panels(*connection),
        backdrop(*connection, [this] { return panels.shown(); }),
        input(*connection) {
    screens.setUsableArea([this](const QScreen& screen) { return workArea.usable(screen); });
  }

  std::unique_ptr<X11Connection> connection;
  X11WorkArea workArea;
  X11Panels panels;
  X11Backdrop backdrop;
  X11InputEvents input;
};

}  // namespace

class LinuxDesktop::Parts {
 public:
  explicit Parts(MainQueue& queue) : links(screens) {
    if (QGuiApplication::platformName() == QLatin1String("xcb")) {
      if (auto connection = X11Connection::open()) {
        x11 = std::make_unique<X11Parts>(std::move(connection), screens);
      } else {
        logger.error(
            "No second connection to the X server: the panel appears where the desktop puts it. "
            "Check that the variable DISPLAY names the display that the program runs on.");
      }
    } else if (QGuiApplication::platformName().startsWith(QLatin1String("wayland"))) {
      layerShell = std::make_unique<LayerShellPanels>();
    }
    if (!x11 && !layerShell) {
      plainInput = std::make_unique<QtInputEvents>();
    }
    windows = std::make_unique<QuickWindows>(
        queue, screens, backdrop(),
        [this](const PanelWindowOptions& options) { return makeHost(options); });
  }

  std::unique_ptr<PanelHost> makeHost(const PanelWindowOptions& options) {
    if (x11) {
      return x11->panels.makeHost(options);
    }
    auto host = layerShell ? layerShell->makeHost(options) : nullptr;
    return host ? std::move(host) : std::make_unique<WindowHost>(options);
  }

  BackdropSource& backdrop() {
    return x11 ? static_cast<BackdropSource&>(x11->backdrop) : noBackdrop;
  }
  InputEvents& input() {
    if (x11) {
      return x11->input;
    }
    return layerShell ? layerShell->input() : *plainInput;
  }

  QtApplication application;
  LinuxScreens screens;
  QtDisplayLinks links;
  NoBackdrop noBackdrop;
  std::unique_ptr<QtInputEvents> plainInput;  // where there is nothing better
  std::unique_ptr<X11Parts> x11;
  std::unique_ptr<LayerShellPanels> layerShell;
  std::unique_ptr<QuickWindows> windows;
};

void LinuxDesktop::prepare() {
  QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
  // The toolkit would load the graphics driver on Wayland, for nothing.
  if (!qEnvironmentVariableIsSet("QT_WAYLAND_DISABLE_HW_INTEGRATION")) {
    qputenv("QT_WAYLAND_DISABLE_HW_INTEGRATION", "1");
  }
}

LinuxDesktop::LinuxDesktop(MainQueue& queue) : parts_(std::make_unique<Parts>(queue)) {}
LinuxDesktop::~LinuxDesktop() = default;

Application& LinuxDesktop::application() {
  return parts_->application;
}

Screens& LinuxDesktop::screens() {
  return parts_->screens;
}

DisplayLinks& LinuxDesktop::displayLinks() {
  return parts_->links;
}

InputEvents& LinuxDesktop::inputEvents() {
  return parts_->input();
}

BackdropSource& LinuxDesktop::backdrop() {
  return parts_->backdrop();
}

Windows& LinuxDesktop::windows() {
  return *parts_->windows;
}

void LinuxDesktop::setOwnAreas(std::function<std::vector<Rect>()> areas) {
  if (parts_->x11) {
    parts_->x11->input.setOwnAreas(std::move(areas));
  }
}

}  // namespace plemora
