#pragma once

#include <xcb/damage.h>
#include <xcb/xcb.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "support/child_process.h"

namespace plemora::rig {

class PrivateSession;

using Instant = std::chrono::steady_clock::time_point;

/// In pixels of the screen.
struct Area {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
};

/// When a window's first frame was seen.
struct FirstFrame {
  xcb_window_t window = 0;
  Instant drawn;  ///< in the window itself
  Instant seen;   ///< on the screen, once the compositing manager has shown it
  Area place = {};
};

/// A desktop of its own: Xvfb 1280x800, openbox, picom and lxqt-panel with a tray at the top. It
/// believes the X server alone: what changed, where, and whether the pixels differ. DISPLAY is set
/// to it. Throws std::runtime_error when it does not come up.
class WatchedDesktop {
 public:
  explicit WatchedDesktop(PrivateSession& session);
  ~WatchedDesktop();
  WatchedDesktop(const WatchedDesktop&) = delete;
  WatchedDesktop& operator=(const WatchedDesktop&) = delete;

  pid_t server() const { return programs_.front()->pid(); }

  /// Does what makes an icon appear in the tray; where it is and when it was seen.
  std::optional<std::pair<Area, Instant>> iconAfter(const std::function<void()>& action);

  /// Does what makes a window of more than 200x100 pixels appear or appear again. None when there
  /// is none within 10 seconds.
  std::optional<FirstFrame> frameAfter(const std::function<void()>& action);
  bool isShown(xcb_window_t window);

  void movePointer(int x, int y);
  void button(bool isDown);
  void click(int x, int y);
  void pressEscape();

  /// Writes what the screen shows, as a portable pixmap.
  void save(const std::string& file);

 private:
  using Pixels = std::vector<std::uint8_t>;

  void start(std::vector<std::string> arguments, bool isServer = false);
  void fake(int type, int detail, int x = 0, int y = 0);
  void startTray();
  void watch(xcb_window_t window);
  Pixels pixels(const Area& area);
  Area frameOf(xcb_window_t window);
  /// Itself, or the window manager's frame around it.
  xcb_window_t topLevel(xcb_window_t window);
  /// The next thing that the server reports; none within that time.
  std::unique_ptr<xcb_generic_event_t, decltype(&free)> next(Instant until);
  /// Forgets what has been reported, once nothing changes for a while.
  void settle();

  PrivateSession& session_;
  std::vector<std::unique_ptr<ChildProcess>> programs_;  // the server first
  xcb_connection_t* xcb_ = nullptr;
  xcb_screen_t* screen_ = nullptr;
  std::uint8_t damageEvent_ = 0;
};

}  // namespace plemora::rig
