#pragma once

#include <memory>
#include <optional>

#include "adapters/linux/windows/layer_shell_session.h"
#include "adapters/linux/windows/panel_host.h"
#include "adapters/linux/windows/qt_input_events.h"

namespace plemora {

/// Panels on a Wayland display. Nothing is asked of the compositor, and nothing heard from it,
/// while no panel is shown. Main thread.
class LayerShellPanels {
 public:
  /// Null where the compositor has no layer shell. This object must outlive the host.
  [[nodiscard]] std::unique_ptr<PanelHost> makeHost(const PanelWindowOptions& options);
  /// Global monitors hear presses beside the panels while one is shown.
  InputEvents& input() { return input_; }

 private:
  class Input : public QtInputEvents {
   public:
    Point pointerLocation() override;
    void pressedElsewhere(const InputEvent& event);

    std::optional<QPointF> pointer;  ///< toolkit's; known while a panel is shown
  };

  std::shared_ptr<LayerShellSession> session();

  Input input_;
  std::weak_ptr<LayerShellSession> session_;
};

}  // namespace plemora
