#pragma once

#include <string>
#include <vector>

#include "adapters/stage/desktop/stage_accessibility.h"
#include "adapters/stage/desktop/stage_control_center.h"
#include "adapters/stage/desktop/stage_dock.h"
#include "adapters/stage/desktop/stage_extensions.h"
#include "adapters/stage/desktop/stage_file_drag.h"
#include "adapters/stage/desktop/stage_input.h"
#include "adapters/stage/desktop/stage_menu_bar.h"
#include "adapters/stage/desktop/stage_players.h"
#include "adapters/stage/desktop/stage_program.h"
#include "adapters/stage/desktop/stage_prompt.h"
#include "adapters/stage/desktop/stage_settings.h"
#include "adapters/stage/desktop/stage_space.h"
#include "adapters/stage/desktop/stage_window_server.h"
#include "adapters/stage/desktop/stage_workspace.h"
#include "adapters/stage/manual_serial_queue.h"
#include "adapters/stage/scripted_appearance.h"
#include "adapters/stage/scripted_consent.h"
#include "adapters/stage/scripted_control_reload.h"
#include "adapters/stage/scripted_login_item.h"
#include "adapters/stage/scripted_notifications.h"
#include "adapters/stage/scripted_route_picker.h"
#include "adapters/stage/scripted_screens.h"
#include "adapters/stage/scripted_system_info.h"
#include "adapters/stage/scripted_update_service.h"
#include "adapters/stage/simulated_hal.h"
#include "adapters/stage/stage_windows.h"
#include "adapters/stage/virtual_clock.h"
#include "adapters/stage/virtual_display_links.h"
#include "adapters/stage/virtual_main_queue.h"
#include "platform/preferences.h"

namespace plemora {

struct StageDesktopOptions {
  /// Whether the hardware layer runs as time goes by while a process plays.
  bool runsAudio = true;
};

/// A Mac's desktop: the world that the program runs in, with the processes of the system beside it.
/// What the program is built on is public, for a composition root to hand out; so are the
/// processes, for whoever draws them or acts as the user. Nothing moves but by advance() and the
/// acts of the user, which let everything they set off run. Main thread; outlives the program's
/// objects, whose handles (windows, status items, monitors, elements) may all the same go later.
class StageDesktop {
 public:
  /// One for the program and one for the system's processes: they differ while what one of them has
  /// set waits to be stored. They outlive the desktop.
  struct PreferencePair {
    Preferences& program;
    Preferences& system;
  };

  explicit StageDesktop(PreferencePair preferences, const StageDesktopOptions& options = {});
  ~StageDesktop();
  StageDesktop(const StageDesktop&) = delete;
  StageDesktop& operator=(const StageDesktop&) = delete;

  // Time and facts.
  VirtualClock clock;
  VirtualMainQueue mainQueue{clock};
  StageQueueFactory queues;
  VirtualDisplayLinks displayLinks{mainQueue};
  ScriptedSystemInfo systemInfo;
  ScriptedAppearance appearance;
  ScriptedScreens screens;
  StageSpace space{screens};

  // The program's own.
  PreferencePair preferences;
  ScriptedConsent consent;
  ScriptedLoginItem loginItem;
  ScriptedUpdateService updates;
  ScriptedRoutePicker routePicker;
  ScriptedControlReload controlReload;
  ScriptedNotifications notifications;
  SimulatedHal hal{mainQueue};

  // Windows and processes.
  StageWindowNumbers numbers;
  StageWindows windows{mainQueue, screens};
  StageWorkspace workspace;
  StageAccessibility accessibility;
  StageExtensions extensions;
  StageProgram program;
  StageMenuBar menuBar;
  StageControlCenter controlCenter;
  StageSettings settings;
  StageDock dock;
  StagePlayers players;
  StagePrompt prompt;
  StageWindowServer windowServer{screens};
  StageInput input;
  StageFileDrag fileDrag;

  /// Lets that many seconds pass: timers, frames, fades and sound, each at its time.
  void advance(double seconds);
  /// Runs what waits on all queues. Time stands still.
  void settle();

  // What the user does. Locations are global, y up.
  void movePointer(const Point& location);
  void press(const Point& location, StageButton button = StageButton::left);
  void release(StageButton button = StageButton::left);
  void click(const Point& location, StageButton button = StageButton::left);
  /// Presses, moves there over that many seconds, and releases.
  void drag(const Point& from, const Point& to, double seconds = 0.2);
  void scroll(const Point& location, double dx, double dy, int steps);
  void key(int keyCode, const std::string& text = {}, unsigned modifiers = 0);
  void type(const std::string& text);  ///< UTF-8, one key for each character
  /// A tile of Control Center, an entry of the open menu: clicked where it stands. False: there is
  /// none to be seen.
  bool clickTile(const std::string& id);
  bool clickMenuItem(const std::string& title);

  AudioObjectID plug(const SimulatedDevice& device) { return hal.addDevice(device); }
  bool pull(const std::string& uid);

  /// A display of that frame (global, y up) with a menu bar and, on the first one, a Dock.
  static Screen makeScreen(int id, const Rect& frame, double scale, bool hasDock);

 private:
  void runAudio();
  bool drop(const Point& location, const std::string& path);

  Timer audio_;
};

}  // namespace plemora
