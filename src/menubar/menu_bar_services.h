#pragma once

#include <functional>
#include <optional>

#include "base/geometry.h"

namespace plemora {

class Application;
class Clock;
class ControlCenterLook;
class DisplayLinks;
class InputEvents;
class MainQueue;
class RoutePicker;
class Screens;
class StatusBar;
class Updater;
class UserDefaults;
class Windows;
class Workspace;

/// The world as the status item and its panel need it. All of it outlives them.
struct MenuBarServices {
  MainQueue& mainQueue;
  Clock& clock;
  UserDefaults& defaults;
  Workspace& workspace;
  Application& application;
  Screens& screens;
  InputEvents& inputEvents;
  Windows& windows;
  DisplayLinks& displayLinks;
  StatusBar& statusBar;
  RoutePicker& routePicker;
  ControlCenterLook& look;
  Updater& updater;
};

/// What the status item asks of the system's Control Center. Without one, all are empty.
struct ControlCenterHooks {
  /// Frame of its icon in the menu bar, global, y up.
  std::function<std::optional<Rect>()> iconFrame;
  /// Whether its layout reads, has no Sound element of the system's own, and two or more of ours.
  std::function<bool()> canPutSoundBack;
  /// Puts the system's Sound element back, and restarts Control Center. May throw.
  std::function<void()> putSoundBack;
};

}  // namespace plemora
