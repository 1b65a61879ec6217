#include "adapters/linux/windows/linux_desktop.h"

#include <QGuiApplication>
#include <memory>
#include <utility>

#include "adapters/linux/windows/layer_shell_input.h"
#include "adapters/linux/windows/qt_application.h"
#include "adapters/linux/windows/qt_display_links.h"
#include "adapters/linux/windows/x11_connection.h"
#include "adapters/linux/windows/x11_input_events.h"
#include "adapters/linux/windows/x11_work_area.h"
#include "base/log.h"

namespace plemora {

namespace {

constexpr Logger logger("windows");

void setUnlessSet(const char* variable, const char* value) {
  if (!qEnvironmentVariableIsSet(variable)) {
    qputenv(variable, value);
  }
}

/// What an X display has beyond what the toolkit offers everywhere.
struct X11Parts {
  explicit X11Parts(std::unique_ptr<X11Connection> opened, LinuxScreens& screens)
      : connection(std::move(opened)),
        workArea(*connection, [&screens] { screens.refresh(); }),
        input(*connection) {
    screens.setUsableArea([this](const QScreen& screen) { return workArea.usable(screen); });
  }

  std::unique_ptr<X11Connection> connection;
  X11WorkArea workArea;
  X11InputEvents input;
};

}  // namespace

class LinuxDesktop::Parts {
 public:
  Parts() : links(screens) {
    if (QGuiApplication::platformName() == QLatin1String("xcb")) {
      if (auto connection = X11Connection::open()) {
        x11 = std::make_unique<X11Parts>(std::move(connection), screens);
      } else {
        logger.error(
            "No second connection to the X server: the panel appears where the desktop puts it. "
            "Check that the variable DISPLAY names the display that the program runs on.");
      }
    } else if (QGuiApplication::platformName().startsWith(QLatin1String("wayland"))) {
      layerShellInput = std::make_unique<LayerShellInput>();
    }
    if (!x11 && !layerShellInput) {
      plainInput = std::make_unique<QtInputEvents>();
    }
  }

  InputEvents& input() {
    if (x11) {
      return x11->input;
    }
    return layerShellInput ? *layerShellInput : *plainInput;
  }

  QtApplication application;
  LinuxScreens screens;
  QtDisplayLinks links;
  std::unique_ptr<QtInputEvents> plainInput;  // where there is nothing better
  std::unique_ptr<X11Parts> x11;
  std::unique_ptr<LayerShellInput> layerShellInput;
};

void LinuxDesktop::prepare() {
  // The toolkit would load the graphics driver, for nothing.
  setUnlessSet("QT_WAYLAND_DISABLE_HW_INTEGRATION", "1");
  setUnlessSet("QT_XCB_GL_INTEGRATION", "none");
}

LinuxDesktop::LinuxDesktop() : parts_(std::make_unique<Parts>()) {}
LinuxDesktop::~LinuxDesktop() = default;

Application& LinuxDesktop::application() {
  return parts_->application;
}

LinuxScreens& LinuxDesktop::screens() {
  return parts_->screens;
}

DisplayLinks& LinuxDesktop::displayLinks() {
  return parts_->links;
}

InputEvents& LinuxDesktop::inputEvents() {
  return parts_->input();
}

void LinuxDesktop::setOwnAreas(std::function<std::vector<Rect>()> areas) {
  if (parts_->x11) {
    parts_->x11->input.setOwnAreas(std::move(areas));
  }
}

X11Connection* LinuxDesktop::x11() {
  return parts_->x11 ? parts_->x11->connection.get() : nullptr;
}

LayerShellInput* LinuxDesktop::layerShellInput() {
  return parts_->layerShellInput.get();
}

}  // namespace plemora
