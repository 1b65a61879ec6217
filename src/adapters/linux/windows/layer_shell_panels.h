#pragma once

#include <memory>

#include "adapters/linux/windows/layer_shell_input.h"
#include "adapters/linux/windows/layer_shell_session.h"
#include "adapters/linux/windows/panel_host.h"

namespace plemora {

/// Panels on a Wayland display. Nothing is asked of the compositor, and nothing heard from it,
/// while no panel is shown. Main thread.
class LayerShellPanels {
 public:
  /// The input hears of presses beside the panels while one is shown; it must outlive this object.
  explicit LayerShellPanels(LayerShellInput& input) : input_(input) {}

  /// Null where the compositor has no layer shell. This object must outlive the host.
  [[nodiscard]] std::unique_ptr<PanelHost> makeHost(const PanelWindowOptions& options);

 private:
  std::shared_ptr<LayerShellSession> session();

  LayerShellInput& input_;
  std::weak_ptr<LayerShellSession> session_;
};

}  // namespace plemora
