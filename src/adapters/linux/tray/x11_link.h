#pragma once

#include <xcb/xcb.h>

#include <QImage>
#include <QPoint>
#include <QRect>
#include <QSocketNotifier>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace plemora {

/// What xcb returns, freed at the end.
struct FreeReply {
  void operator()(void* reply) const { std::free(reply); }
};
template <typename Reply>
using XcbReply = std::unique_ptr<Reply, FreeReply>;

/// The tray's own connection to the X server: nothing that it waits for disturbs the toolkit's.
/// Rectangles are in pixels of the root window. Main thread.
class X11Link {
 public:
  using EventHandler = std::function<void(const xcb_generic_event_t&)>;

  /// Null where the program's windows are not on an X server.
  static std::unique_ptr<X11Link> open();
  /// To a display by its name; null when it cannot be reached. Empty: DISPLAY.
  static std::unique_ptr<X11Link> open(const std::string& display);
  ~X11Link();
  X11Link(const X11Link&) = delete;
  X11Link& operator=(const X11Link&) = delete;

  xcb_connection_t* get() const { return connection_; }
  const xcb_screen_t& screen() const { return *screen_; }
  int screenNumber() const { return number_; }

  void setEventHandler(EventHandler handler) { handler_ = std::move(handler); }
  /// Sends what is waiting. Called after every group of requests.
  void flush();

  xcb_atom_t atom(const std::string& name);
  /// A property of 32-bit values; empty when there is none.
  std::vector<std::uint32_t> property(xcb_window_t window, const std::string& name);
  /// None for a window that is gone or not shown.
  std::optional<QRect> shownRect(xcb_window_t window);
  std::optional<QPoint> pointer();
  /// What a window shows, its children included; null when it cannot be read.
  QImage picture(xcb_window_t window, const QRect& part);

  /// A window of a panel or dock that is shown.
  struct Dock {
    xcb_window_t window;
    QRect rect;
  };
  /// The uppermost last. Within one turn of the event loop the server is asked once.
  std::vector<Dock> docks();

 private:
  X11Link(xcb_connection_t* connection, int number);
  std::vector<Dock> findDocks();
  void dispatch();
  void dispatchLater();
  template <typename Reply, typename Cookie>
  XcbReply<Reply> wait(Cookie cookie,
                       Reply* (*read)(xcb_connection_t*, Cookie, xcb_generic_error_t**));

  xcb_connection_t* connection_;
  int number_;
  const xcb_screen_t* screen_ = nullptr;
  std::map<std::string, xcb_atom_t> atoms_;
  EventHandler handler_;
  std::unique_ptr<QSocketNotifier> readable_;
  bool isDispatchDue_ = false;
  std::optional<std::vector<Dock>> docks_;  ///< until the next turn
};

}  // namespace plemora
