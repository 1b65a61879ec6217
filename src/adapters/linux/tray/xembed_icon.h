#pragma once

#include <QImage>
#include <QRect>
#include <functional>
#include <optional>

#include "adapters/linux/tray/tray_icon.h"
#include "adapters/linux/tray/x11_link.h"
#include "platform/status_bar.h"

namespace plemora {

/// The program's icon in the system tray of X11 (a window that the tray embeds), there as long as a
/// tray is. Main thread.
class XembedIcon {
 public:
  struct Handlers {
    std::function<void(StatusButtonEvent)> clicked;
    std::function<void(int steps)> scrolled;
    std::function<QImage(int side, TrayShade shade)> draw;
  };

  /// shade: of trays that hide what is behind the icon. The link must outlive the icon; it takes
  /// the link's events.
  XembedIcon(X11Link& x11, std::string tip, TrayShade shade, Handlers handlers);
  ~XembedIcon();
  XembedIcon(const XembedIcon&) = delete;
  XembedIcon& operator=(const XembedIcon&) = delete;

  /// Draws it anew.
  void update();
  void setHighlighted(bool isHighlighted);
  void setShade(TrayShade shade);
  /// Whether a tray was asked to take it.
  bool isInTray() const { return window_ != XCB_WINDOW_NONE; }
  /// Pixels of the desktop, exact; none while it is in no tray.
  std::optional<QRect> frame();

 private:
  void handle(const xcb_generic_event_t& event);
  void findTray();
  void dock();
  void leave();
  void makeWindow();
  void describeWindow();
  void pressed(std::uint8_t button);
  QImage background(bool& isDrawn);

  X11Link& x11_;
  std::string tip_;
  TrayShade shade_;
  Handlers handlers_;
  xcb_atom_t selection_;
  xcb_window_t tray_ = XCB_WINDOW_NONE;    // its owner
  xcb_window_t window_ = XCB_WINDOW_NONE;  // ours
  xcb_colormap_t colors_ = XCB_NONE;
  int depth_ = 0;
  QSize size_;
  bool isHighlighted_ = false;
};

}  // namespace plemora
