#pragma once

#include <xcb/xcb.h>

#include <QRect>
#include <vector>

#include "adapters/linux/windows/x11_connection.h"

namespace plemora {

/// A window that the root window shows, in device pixels.
struct X11Window {
  xcb_window_t id = XCB_WINDOW_NONE;
  QRect frame;  ///< with its border
  int border = 0;
  xcb_visualid_t visual = 0;
  std::uint8_t depth = 0;
  double opacity = 1;                  ///< what the window manager asks of a compositing manager
  std::vector<xcb_rectangle_t> shape;  ///< within the frame; empty: all of it
};

/// The visible children of the root window that touch an area, from the lowest; those from the
/// first one of the given windows on are left out. A handful of round trips, however many windows
/// there are.
std::vector<X11Window> windowsBelow(X11Connection& connection,
                                    const std::vector<xcb_window_t>& ceiling, const QRect& area);

/// Whether a compositing manager paints the screen.
bool isComposited(X11Connection& connection);

}  // namespace plemora
