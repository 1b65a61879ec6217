#pragma once

#include <QRect>
#include <functional>
#include <memory>
#include <vector>

#include "adapters/linux/windows/x11_connection.h"

class QScreen;

namespace plemora {

/// What the docks and panels of an X desktop reserve at the edges of the screens
/// (_NET_WM_STRUT_PARTIAL, or _NET_WM_STRUT, of the windows that the window manager lists).
class X11WorkArea {
 public:
  /// Pixels that a window reserves at one edge of the whole desktop, along a part of that edge.
  struct Strut {
    enum class Edge { left, right, top, bottom };
    Edge edge = Edge::top;
    int thickness = 0;
    int from = 0;  ///< first and last pixel along the edge
    int to = 0;
  };

  /// changed is called when the reserved areas may have changed. The connection must outlive this
  /// object.
  X11WorkArea(X11Connection& connection, std::function<void()> changed);

  /// What is left of a screen, in the toolkit's coordinates.
  QRect usable(const QScreen& screen) const;

  /// What struts leave of a screen, all in device pixels of a desktop of that size.
  static QRect usable(const QRect& screen, const QSize& desktop, const std::vector<Strut>& struts);

 private:
  void read();
  void handle(const xcb_generic_event_t& event);

  X11Connection& connection_;
  std::function<void()> changed_;
  QSize desktop_;
  std::vector<Strut> struts_;
  std::shared_ptr<void> rootEvents_;
  Subscription events_;
};

}  // namespace plemora
