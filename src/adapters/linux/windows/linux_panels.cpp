#include "adapters/linux/windows/linux_panels.h"

#include <QQuickWindow>
#include <utility>

#include "adapters/linux/windows/layer_shell_panels.h"
#include "adapters/linux/windows/linux_desktop.h"
#include "adapters/linux/windows/no_backdrop.h"
#include "adapters/linux/windows/quick_windows.h"
#include "adapters/linux/windows/window_host.h"
#include "adapters/linux/windows/x11_backdrop.h"
#include "adapters/linux/windows/x11_panels.h"

namespace plemora {

namespace {

struct X11Parts {
  explicit X11Parts(X11Connection& connection)
      : panels(connection), backdrop(connection, [this] { return panels.shown(); }) {}

  X11Panels panels;
  X11Backdrop backdrop;
};

}  // namespace

class LinuxPanels::Parts {
 public:
  Parts(LinuxDesktop& desktop, MainQueue& queue) {
    if (X11Connection* connection = desktop.x11()) {
      x11 = std::make_unique<X11Parts>(*connection);
    } else if (LayerShellInput* input = desktop.layerShellInput()) {
      layerShell = std::make_unique<LayerShellPanels>(*input);
    }
    windows = std::make_unique<QuickWindows>(
        queue, desktop.screens(), backdrop(),
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

  NoBackdrop noBackdrop;
  std::unique_ptr<X11Parts> x11;
  std::unique_ptr<LayerShellPanels> layerShell;
  std::unique_ptr<QuickWindows> windows;
};

LinuxPanels::LinuxPanels(LinuxDesktop& desktop, MainQueue& queue) {
  QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
  parts_ = std::make_unique<Parts>(desktop, queue);
}

LinuxPanels::~LinuxPanels() = default;

std::unique_ptr<PanelWindow> LinuxPanels::makePanel(const PanelWindowOptions& options) {
  return parts_->windows->makePanel(options);
}

std::unique_ptr<PanelWindow> LinuxPanels::makeTitled(const TitledWindowOptions& options) {
  return parts_->windows->makeTitled(options);
}

BackdropSource& LinuxPanels::backdrop() {
  return parts_->backdrop();
}

}  // namespace plemora
