#include "adapters/linux/windows/layer_shell_panels.h"

#include <utility>

#include "adapters/linux/windows/layer_shell_host.h"

namespace plemora {

std::unique_ptr<PanelHost> LayerShellPanels::makeHost(const PanelWindowOptions& options) {
  // Kept until the host is shown, which comes next, so that it need not connect again.
  auto first = session();
  if (!first) {
    return nullptr;
  }
  return std::make_unique<LayerShellHost>(options, [this, first]() mutable {
    return first ? std::exchange(first, nullptr) : session();
  });
}

std::shared_ptr<LayerShellSession> LayerShellPanels::session() {
  if (auto current = session_.lock()) {
    return current;
  }
  auto connection = LayerShellConnection::open();
  if (!connection) {
    return nullptr;
  }
  input_.pointer.reset();
  auto result = std::make_shared<LayerShellSession>(
      std::move(connection),
      LayerShellSession::Handlers{[this](const auto& event) { input_.pressedElsewhere(event); },
                                  [this](const QPointF& place) { input_.pointer = place; }});
  session_ = result;
  return result;
}

}  // namespace plemora
