#pragma once

#include <QPointF>
#include <optional>

#include "adapters/linux/windows/qt_input_events.h"

namespace plemora {

/// Input on a Wayland display: what its layer surfaces hear while a panel is shown, and before that
/// what every display tells.
class LayerShellInput : public QtInputEvents {
 public:
  Point pointerLocation() override;
  /// Tells the global monitors.
  void pressedElsewhere(const InputEvent& event);

  std::optional<QPointF> pointer;  ///< toolkit's; known while a panel is shown
};

}  // namespace plemora
