#pragma once

#include <QPointF>
#include <QRect>
#include <functional>
#include <map>
#include <memory>
#include <vector>

#include "adapters/linux/windows/layer_shell_connection.h"
#include "platform/input_events.h"

namespace plemora {

/// What exists while panels are shown on a compositor with the layer shell: the connection, and on
/// every output a surface that shows nothing and takes the presses that hit no panel. Main thread.
class LayerShellSession {
 public:
  struct Handlers {
    /// A press beside the panels, or what comes to the same: something else has taken the keys, or
    /// the panel off the screen. Called by the event loop.
    std::function<void(const InputEvent&)> pressedElsewhere;
    /// Where the pointer is, in the toolkit's coordinates.
    std::function<void(const QPointF&)> pointerMoved;
  };

  LayerShellSession(std::unique_ptr<LayerShellConnection> connection, Handlers handlers);
  ~LayerShellSession();

  LayerShellConnection& connection() { return *connection_; }
  /// The area of a panel that the pointer reaches, in the toolkit's coordinates; empty: none now.
  void setPanel(const void* panel, const QRect& area);

  void pointerMoved(const QPointF& toolkit) { handlers_.pointerMoved(toolkit); }
  /// Reports a left press, later, unless a panel has the keys by then.
  void keysWent();
  /// Reports a left press, later.
  void panelClosed();

 private:
  class Catcher;

  void reportLater(InputEventType type, bool onlyWithoutKeys = false);

  std::unique_ptr<LayerShellConnection> connection_;
  Handlers handlers_;
  QPointF pointer_;
  std::map<const void*, QRect> panels_;
  std::vector<std::unique_ptr<Catcher>> catchers_;
  QObject context_;  // ends what is to be done later
};

}  // namespace plemora
