#pragma once

#include <xcb/damage.h>
#include <xcb/xcb.h>

#include <QRect>
#include <QTimer>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <vector>

#include "adapters/linux/windows/x11_connection.h"
#include "adapters/linux/windows/x11_window_stack.h"

namespace plemora {

/// Notices, while it lives, whatever may change the picture of some windows: what they draw (X
/// Damage), their stacking and places, the desktop's background. At most 30 times a second.
class X11BackdropWatch {
 public:
  /// changed may destroy the watch. isPanel: windows whose changes do not count.
  X11BackdropWatch(X11Connection& connection, std::function<bool(xcb_window_t)> isPanel,
                   std::function<void()> changed);
  ~X11BackdropWatch();
  X11BackdropWatch(const X11BackdropWatch&) = delete;
  X11BackdropWatch& operator=(const X11BackdropWatch&) = delete;

  /// The windows last given for the same area, while nothing has moved since.
  const std::vector<X11Window>* windows(const QRect& area) const;
  /// From now on these are watched, where they touch the area.
  void setWindows(std::vector<X11Window> windows, const QRect& area);

 private:
  void handle(const xcb_generic_event_t& event);
  void schedule();
  void fire();
  /// Whether a damaged window has changed within the area; its damage is taken away.
  bool takeDamage(const X11Window& window, xcb_damage_damage_t damage);

  X11Connection& connection_;
  std::function<bool(xcb_window_t)> isPanel_;
  std::function<void()> changed_;
  std::optional<std::uint8_t> damageEvent_;

  QRect area_;
  std::vector<X11Window> windows_;
  bool areWindowsKnown_ = false;
  bool hasMoved_ = false;  ///< something other than a drawing has happened since the last call
  std::map<xcb_window_t, xcb_damage_damage_t> damages_;
  std::set<xcb_window_t> damaged_;

  QTimer timer_;
  std::chrono::steady_clock::time_point last_{};
  std::shared_ptr<void> rootEvents_;
  Subscription events_;
};

}  // namespace plemora
