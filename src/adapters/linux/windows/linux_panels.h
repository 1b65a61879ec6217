#pragma once

#include <memory>

#include "platform/backdrop_source.h"
#include "platform/main_queue.h"
#include "platform/panel_window.h"

namespace plemora {

class LinuxDesktop;

/// The panels of a Linux desktop, and what lies behind them. Scenes of the whole program are drawn
/// in software from its first panel on. Main thread.
class LinuxPanels : public Windows {
 public:
  /// Both outlive it, and it every panel.
  LinuxPanels(LinuxDesktop& desktop, MainQueue& queue);
  ~LinuxPanels() override;
  LinuxPanels(const LinuxPanels&) = delete;
  LinuxPanels& operator=(const LinuxPanels&) = delete;

  [[nodiscard]] std::unique_ptr<PanelWindow> makePanel(const PanelWindowOptions& options) override;
  [[nodiscard]] std::unique_ptr<PanelWindow> makeTitled(
      const TitledWindowOptions& options) override;
  BackdropSource& backdrop();

 private:
  class Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace plemora
