#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "adapters/linux/windows/linux_screens.h"
#include "base/geometry.h"
#include "platform/application.h"
#include "platform/display_link.h"
#include "platform/input_events.h"

namespace plemora {

class LayerShellInput;
class X11Connection;

/// A Linux desktop without its panels (see LinuxPanels): its screens, and what the user does there,
/// for X11 and for Wayland, whichever the QGuiApplication runs on (any other platform of Qt is
/// served like a Wayland without extras). Main thread; made after the QGuiApplication and destroyed
/// before it. Costs a connection to the display and no wake-ups while no panel is shown and no
/// monitor is installed.
class LinuxDesktop {
 public:
  /// Before the QGuiApplication is made: keeps the toolkit from what drawing in software needs not.
  static void prepare();

  LinuxDesktop();
  ~LinuxDesktop();
  LinuxDesktop(const LinuxDesktop&) = delete;
  LinuxDesktop& operator=(const LinuxDesktop&) = delete;

  Application& application();
  LinuxScreens& screens();
  DisplayLinks& displayLinks();
  InputEvents& inputEvents();

  /// Asked, whenever another program's window is pressed, for areas (global points, y up) that are
  /// ours although their window is not, such as the icon in a tray: presses there do not reach
  /// global monitors, but for those of the right button. Empty function: none.
  void setOwnAreas(std::function<std::vector<Rect>()> areas);

  // What its panels need.
  /// Null: not on X11.
  X11Connection* x11();
  /// Null: not on Wayland.
  LayerShellInput* layerShellInput();

 private:
  class Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace plemora
