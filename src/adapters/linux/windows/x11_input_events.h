#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "adapters/linux/windows/qt_input_events.h"
#include "adapters/linux/windows/x11_connection.h"

namespace plemora {

/// Presses anywhere on an X display, as raw events of XInput 2.2: they come also while a menu of
/// another program has grabbed the pointer. The server is asked for them only while a global
/// monitor is installed. Keys that go to other programs are not reported. Under Xwayland presses
/// over its own windows are seen, and the loss of the keys stands for others.
class X11InputEvents : public QtInputEvents {
 public:
  /// The connection must outlive this object.
  explicit X11InputEvents(X11Connection& connection);

  [[nodiscard]] std::unique_ptr<EventMonitor> monitorGlobal(
      unsigned mask, std::function<void(const InputEvent&)> handler) override;
  Point pointerLocation() override;

  /// See LinuxDesktop::setOwnAreas.
  void setOwnAreas(std::function<std::vector<Rect>()> areas) { ownAreas_ = std::move(areas); }

 private:
  struct Pointer {
    Point location;  ///< global
    bool isOverOurs = false;
  };

  void handle(const xcb_generic_event_t& event);
  void report(InputEventType type);
  void select(unsigned mask);
  /// Where the pointer is, and whether the window under it, at any depth, is one of ours.
  Pointer pointer();

  X11Connection& connection_;
  bool isAvailable_ = false;
  std::function<std::vector<Rect>()> ownAreas_;
  Subscription events_;  // while the server is asked
  std::shared_ptr<int> alive_ = std::make_shared<int>(0);
};

}  // namespace plemora
