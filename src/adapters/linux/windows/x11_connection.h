#pragma once

#include <xcb/xcb.h>

#include <QMetaObject>
#include <QSocketNotifier>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/published.h"

namespace plemora {

/// What the X library gives to be freed: replies and events.
struct FreeDeleter {
  void operator()(void* memory) const { std::free(memory); }
};
template <typename T>
using X11Owned = std::unique_ptr<T, FreeDeleter>;

/// A connection of our own to the X server, beside the toolkit's: its events are ours alone and its
/// errors stop nobody (an unchecked request that fails is forgotten). Main thread; nothing wakes it
/// but the events that somebody asked for.
class X11Connection {
 public:
  using Event = std::shared_ptr<const xcb_generic_event_t>;

  /// To the display in the environment. Null when there is none.
  static std::unique_ptr<X11Connection> open();
  ~X11Connection();
  X11Connection(const X11Connection&) = delete;
  X11Connection& operator=(const X11Connection&) = delete;

  xcb_connection_t* get() const { return connection_; }
  xcb_screen_t& screen() const { return *screen_; }
  xcb_window_t root() const { return screen_->root; }
  int screenNumber() const { return screenNumber_; }
  /// Whether the server is only a guest on a Wayland desktop, most windows of which it never sees.
  bool isXwayland() const;
  void flush() { xcb_flush(connection_); }

  xcb_atom_t atom(const std::string& name);
  /// Whether the server has an extension, and the first code of its events; none without.
  std::optional<std::uint8_t> firstEvent(xcb_extension_t& extension) const;
  /// The value of a property as 32-bit numbers, up to that many; empty when there is none.
  std::vector<std::uint32_t> property(xcb_window_t window, xcb_atom_t name,
                                      std::uint32_t limit = 1024) const;

  /// Asks for those events of the root window (XCB_EVENT_MASK_...) while the result lives.
  [[nodiscard]] std::shared_ptr<void> watchRoot(std::uint32_t mask);
  /// Called for every event of the connection while subscribed.
  [[nodiscard]] Subscription observe(std::function<void(const Event&)> observer) {
    return events_.subscribe(std::move(observer));
  }

 private:
  X11Connection(xcb_connection_t* connection, int screenNumber);
  void dispatch();
  void updateRootMask();

  xcb_connection_t* connection_;
  xcb_screen_t* screen_ = nullptr;
  int screenNumber_;
  std::map<std::string, xcb_atom_t> atoms_;
  std::shared_ptr<std::vector<std::uint32_t>> rootMasks_ =
      std::make_shared<std::vector<std::uint32_t>>();
  Published<Event> events_;
  std::unique_ptr<QSocketNotifier> notifier_;
  QMetaObject::Connection beforeBlocking_;
  bool isDispatching_ = false;
};

}  // namespace plemora
