#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "adapters/linux/windows/x11_connection.h"
#include "adapters/linux/windows/x11_painter.h"
#include "platform/backdrop_source.h"

namespace plemora {

/// What lies behind our panels on an X display: the windows below the lowest of them, painted once
/// more (X Composite, with or without a compositing manager). While somebody observes, the server
/// keeps the windows' contents and reports what changes in those that touch the rectangle last
/// captured; otherwise nothing is kept and nothing is reported.
///
/// The kind is never compositor: pixels can be had over every X server that a compositor needs, and
/// carry the colours that the styles ask for, which a desktop's own blur does not. Under Xwayland
/// most windows are not the X server's, so there is nothing to be had.
class X11Backdrop : public BackdropSource {
 public:
  /// panels: the X windows of our panels on screen. The connection must outlive this object.
  X11Backdrop(X11Connection& connection, std::function<std::vector<xcb_window_t>()> panels);
  ~X11Backdrop() override;

  Kind kind() override { return kind_; }
  BackdropImage capture(const Rect& rect) override;
  /// To be called before the panel is on the screen: it may have to remember the screen without it.
  [[nodiscard]] Subscription observe(std::function<void()> changed) override;

  /// Whether the server is asked to report and keep anything.
  bool isWatching() const { return !session_.expired(); }

 private:
  class Session;

  X11Connection& connection_;
  std::function<std::vector<xcb_window_t>()> panels_;
  X11Painter painter_;
  Kind kind_ = Kind::none;
  Published<int> changes_;  ///< how many there were
  std::weak_ptr<Session> session_;
};

}  // namespace plemora
