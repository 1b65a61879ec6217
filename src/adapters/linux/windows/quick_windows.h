#pragma once

#include <memory>

#include "adapters/linux/windows/linux_screens.h"
#include "adapters/linux/windows/no_backdrop.h"
#include "adapters/linux/windows/panel_host.h"
#include "platform/backdrop_source.h"
#include "platform/main_queue.h"
#include "platform/panel_window.h"

namespace plemora {

/// Panels as Qt Quick windows, drawn in software. A panel's window is made when the panel is first
/// shown, by the factory of the display, and kept. One with a title bar is the toolkit's own on
/// every display; it is opaque, so nothing is looked at behind it.
class QuickWindows : public Windows {
 public:
  /// All must outlive the windows and every panel.
  QuickWindows(MainQueue& queue, LinuxScreens& screens, BackdropSource& backdrop,
               PanelHostFactory makeHost);

  [[nodiscard]] std::unique_ptr<PanelWindow> makePanel(const PanelWindowOptions& options) override;
  [[nodiscard]] std::unique_ptr<PanelWindow> makeTitled(
      const TitledWindowOptions& options) override;

 private:
  MainQueue& queue_;
  LinuxScreens& screens_;
  BackdropSource& backdrop_;
  PanelHostFactory makeHost_;
  NoBackdrop noBackdrop_;
};

}  // namespace plemora
