#pragma once

#include <QDBusConnection>
#include <memory>
#include <string>

#include "adapters/linux/desktop/desktop_notifier.h"
#include "adapters/linux/desktop/package_updates.h"
#include "adapters/linux/desktop/portal_appearance.h"
#include "adapters/linux/desktop/xdg_login_item.h"
#include "adapters/linux/tray/linux_status_bar.h"
#include "adapters/linux/tray/raop_route_picker.h"
#include "adapters/linux/windows/linux_desktop.h"
#include "app/services/launch_at_login.h"
#include "app/services/updater.h"
#include "main/desktop_ui.h"
#include "main/linux_program.h"
#include "main/ui/panel_module.h"
#include "menubar/status_item_controller.h"
#include "onboarding/desktop_setup.h"
#include "skin/look/control_center_look.h"

namespace plemora {

/// The icon in the tray and the panel below it, on the desktop that the QGuiApplication runs on.
/// What draws the panel is loaded when it opens for the first time. Main thread; destroyed before
/// the QGuiApplication and before the program.
class LinuxPanel : public Panel {
 public:
  LinuxPanel(LinuxProgram& program, const QDBusConnection& bus, const std::string& version);
  ~LinuxPanel() override;
  LinuxPanel(const LinuxPanel&) = delete;
  LinuxPanel& operator=(const LinuxPanel&) = delete;

  void open() override;
  bool needsSetUp() override { return !setup_.wasCompleted(); }
  void setUp() override;

 private:
  /// Those of the parts, which are there before the first panel is made.
  class PanelWindows : public Windows {
   public:
    explicit PanelWindows(std::unique_ptr<PanelParts>& parts) : parts_(parts) {}
    [[nodiscard]] std::unique_ptr<PanelWindow> makePanel(
        const PanelWindowOptions& options) override {
      return parts_->windows().makePanel(options);
    }
    [[nodiscard]] std::unique_ptr<PanelWindow> makeTitled(
        const TitledWindowOptions& options) override {
      return parts_->windows().makeTitled(options);
    }

   private:
    std::unique_ptr<PanelParts>& parts_;
  };

  MenuBarServices services(LinuxProgram& program);
  /// What draws, loaded if need be; null when that fails, of which the user is told.
  PanelParts* parts();
  std::shared_ptr<HostedView> makeScene(PanelView& view);

  MainQueue& queue_;

  // The order matters: what is used stands before its users.
  LinuxDesktop desktop_;
  std::unique_ptr<PanelParts> parts_;
  PanelWindows windows_{parts_};
  PortalAppearance appearance_;
  ControlCenterLook look_;
  DesktopNotifier notifier_;
  PackageUpdates updates_;
  Updater updater_;
  XdgLoginItem loginItem_;
  LaunchAtLogin launchAtLogin_;
  LinuxStatusBar statusBar_;
  RaopRoutePicker routePicker_;
  StatusItemController controller_;
  DesktopSetup setup_;
  Timer readying_;
  Timer settling_;
};

}  // namespace plemora
