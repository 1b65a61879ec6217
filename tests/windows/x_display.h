#pragma once

#include <xcb/xcb.h>

#include <QGuiApplication>
#include <QRect>
#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "support/child_process.h"

namespace plemora {

/// What runs on a test's X display beside the program.
struct DisplaySetup {
  std::string name;
  bool hasWindowManager = false;                  ///< openbox
  bool hasCompositingManager = false;             ///< picom
  std::optional<unsigned> background = 0x305070;  ///< the root pixmap's colour; none: no pixmap
};

inline std::ostream& operator<<(std::ostream& out, const DisplaySetup& setup) {
  return out << setup.name;
}

/// An X server of the test's own, 1000x700, with another program's connection to it. Everything is
/// in device pixels. DISPLAY is set to it.
class XDisplay {
 public:
  explicit XDisplay(const DisplaySetup& setup);
  ~XDisplay();
  XDisplay(const XDisplay&) = delete;
  XDisplay& operator=(const XDisplay&) = delete;

  /// A window of the other program, shown and filled with 0xRRGGBB. One that the window manager
  /// manages is undecorated and lies where it is asked to.
  xcb_window_t makeWindow(const QRect& frame, unsigned color, bool isManaged = false);
  void paint(xcb_window_t window, const QRect& area, unsigned color);
  void raise(xcb_window_t window);
  void move(xcb_window_t window, const QPoint& to);
  void destroy(xcb_window_t window);
  void cutShape(xcb_window_t window, const QRect& remains);

  /// Makes a dock of it: _NET_WM_STRUT_PARTIAL.
  void reserve(xcb_window_t window, const std::array<std::uint32_t, 12>& strut);

  /// Whether all of the area is on the screen.
  bool reaches(const QRect& area);
  /// What the screen shows, 0xRRGGBB; beyond its edges black.
  unsigned pixel(const QPoint& point);
  QRect frameOf(xcb_window_t window);
  bool isShown(xcb_window_t window);
  /// Children of the root window, lowest first.
  std::vector<xcb_window_t> stack();
  xcb_window_t focus();
  void setFocus(xcb_window_t window);
  bool hasSelectionOwner(const std::string& name);
  std::vector<std::uint32_t> property(xcb_window_t window, const std::string& name);

  void click(const QPoint& point, int button = 1);
  /// Presses at the first point, lets go at the last, and is seen on the way between them.
  void drag(const QPoint& from, const QPoint& to);
  void pressKey(unsigned keysym);
  void setScreenSize(const QSize& size);

 private:
  xcb_atom_t atom(const std::string& name);
  void setRootPixmap(unsigned color);
  void fake(int type, int detail, const QPoint& point = {});
  void sync();

  std::vector<std::unique_ptr<rig::ChildProcess>> programs_;  // the server first
  xcb_connection_t* xcb_ = nullptr;
  xcb_screen_t* screen_ = nullptr;
};

/// The toolkit on a display.
class XApplication {
 public:
  XApplication();
  ~XApplication();

 private:
  int count_ = 1;
  std::string name_ = "windows_test";
  char* arguments_[2] = {name_.data(), nullptr};
  std::unique_ptr<QGuiApplication> application_;
};

/// Runs the event loop until the answer is true; false when it is not in good time.
bool waitUntil(const std::function<bool()>& question);
/// Runs what is due and what comes of it, in this program and in those beside it, for a moment.
void settle();

}  // namespace plemora
