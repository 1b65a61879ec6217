#pragma once

#include <xcb/render.h>
#include <xcb/xcb.h>

#include <QRect>
#include <map>
#include <optional>
#include <vector>

#include "adapters/linux/windows/x11_window_stack.h"
#include "platform/backdrop_source.h"

namespace plemora {

/// Paints windows over the desktop's background on the server (X Render) and fetches the pixels.
/// The windows must be redirected (X Composite).
class X11Painter {
 public:
  /// The connection must outlive it. isAvailable() is false on servers without what it needs.
  explicit X11Painter(X11Connection& connection);
  ~X11Painter();
  X11Painter(const X11Painter&) = delete;
  X11Painter& operator=(const X11Painter&) = delete;

  bool isAvailable() const { return isAvailable_; }

  /// Remembers the screen as it looks now, for desktops whose background is nobody's pixmap
  /// (it is painted by the compositing manager itself, or plain). Until forgetScreen().
  void rememberScreen();
  void forgetScreen();

  /// Empty when the server refuses.
  BackdropImage paint(const std::vector<X11Window>& windows, const QRect& area);

 private:
  void paintBackground(xcb_render_picture_t target, const QRect& area);
  void paintWindow(xcb_render_picture_t target, const X11Window& window, const QRect& area,
                   bool isComposited);
  /// The root pixmap that programs which set the background leave on the root window.
  std::optional<xcb_pixmap_t> rootPixmap();
  BackdropImage fetch(xcb_pixmap_t pixmap, const QRect& area);

  X11Connection& connection_;
  bool isAvailable_ = false;
  std::map<xcb_visualid_t, xcb_render_pictformat_t> formats_;
  std::vector<xcb_visualid_t> translucent_;  ///< visuals whose pixels have alpha
  xcb_pixmap_t remembered_ = XCB_PIXMAP_NONE;
};

}  // namespace plemora
