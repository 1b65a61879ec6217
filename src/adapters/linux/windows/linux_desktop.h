#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "base/geometry.h"
#include "platform/application.h"
#include "platform/backdrop_source.h"
#include "platform/display_link.h"
#include "platform/input_events.h"
#include "platform/main_queue.h"
#include "platform/panel_window.h"
#include "platform/screens.h"

namespace plemora {

/// The windows of a Linux desktop: the seams that show something and hear the user, for X11 and for
/// Wayland, whichever the QGuiApplication runs on (any other platform of Qt is served like a
/// Wayland without extras). Main thread; made after the QGuiApplication and destroyed before it.
/// Costs a connection to the display and no wake-ups while no panel is shown and no monitor is
/// installed.
class LinuxDesktop {
 public:
  /// Says, before the QGuiApplication is made, how scenes are drawn: in software.
  static void prepare();

  /// The queue must outlive the desktop.
  explicit LinuxDesktop(MainQueue& queue);
  ~LinuxDesktop();
  LinuxDesktop(const LinuxDesktop&) = delete;
  LinuxDesktop& operator=(const LinuxDesktop&) = delete;

  Application& application();
  Screens& screens();
  DisplayLinks& displayLinks();
  InputEvents& inputEvents();
  BackdropSource& backdrop();
  Windows& windows();

  /// Asked, whenever another program's window is pressed, for areas (global points, y up) that are
  /// ours although their window is not, such as the icon in a tray: presses there do not reach
  /// global monitors, but for those of the right button. Empty function: none.
  void setOwnAreas(std::function<std::vector<Rect>()> areas);

 private:
  class Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace plemora
