#pragma once

#include <xcb/xcb.h>

#include <QTimer>
#include <memory>
#include <vector>

#include "adapters/linux/windows/panel_host.h"
#include "adapters/linux/windows/x11_connection.h"

namespace plemora {

/// Panels on an X display: override-redirect windows, which no window manager moves, frames or
/// lists, and which therefore look after their stacking and keys themselves. While one is shown,
/// windows that come above it are noticed and it is raised again; full-screen ones (a screen
/// locker, say) are let pass.
class X11Panels {
 public:
  /// The connection must outlive this object, and this object every panel.
  explicit X11Panels(X11Connection& connection) : connection_(connection) {}

  [[nodiscard]] std::unique_ptr<PanelHost> makeHost(const PanelWindowOptions& options);
  /// The X windows of the panels that are shown.
  const std::vector<xcb_window_t>& shown() const { return shown_; }

 private:
  class Host;

  void panelShown(xcb_window_t window);
  void panelHidden(xcb_window_t window);
  void handle(const xcb_generic_event_t& event);
  void keepAbove();
  bool isBuried(xcb_window_t panel);

  X11Connection& connection_;
  std::vector<xcb_window_t> shown_;
  int raises_ = 0;  ///< since the first of the panels was shown
  // While one is shown:
  std::unique_ptr<QTimer> later_;
  std::shared_ptr<void> rootEvents_;
  Subscription events_;
};

}  // namespace plemora
