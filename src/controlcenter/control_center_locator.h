#pragma once

#include <optional>
#include <vector>

#include "base/geometry.h"
#include "platform/accessibility.h"

namespace plemora {

class Preferences;
class Screens;
class WindowList;
class Workspace;
struct Screen;

/// A window of Control Center as the window server tells of it.
struct ControlCenterWindow {
  Rect rect;  ///< points, y down from the top left corner of the main screen
  int layer = 0;
  double alpha = 1;

  bool operator==(const ControlCenterWindow&) const = default;
};

/// Where Control Center's windows and its menu bar item are, whether it is being edited, and
/// whether it has the program's control. Keeps nothing: every query asks the system afresh, so they
/// may be made on every frame. Main thread; the services outlive it. What needs accessibility gives
/// none without the user's trust.
class ControlCenterLocator {
 public:
  /// Control Center's bundle identifier, and the domain of its preferences.
  static constexpr const char* domain = "com.apple.controlcenter";

  ControlCenterLocator(Screens& screens, WindowList& windowList, Accessibility& accessibility,
                       Preferences& preferences, Workspace& workspace);

  /// Front to back; without those of which the window server does not tell everything.
  std::vector<ControlCenterWindow> controlCenterWindows() const;
  /// The rectangles of those at one level.
  std::vector<Rect> windows(int layer) const;
  /// The open panel; none while Control Center is closed or being edited.
  std::optional<ControlCenterWindow> panelWindow() const;
  /// Whether Control Center covers the display, as it does while the user edits it.
  bool isEditing() const;

  /// Both of these, for one question to the window server.
  struct Glance {
    std::optional<ControlCenterWindow> panel;
    bool isEditing = false;
  };
  Glance glance() const;

  /// Control Center's menu bar item; null without one.
  AccessibilityElementPointer menuItem() const;
  /// The frame of that item's window in the global space, y up.
  std::optional<Rect> iconFrameFromAccessibility() const;
  /// The same; without accessibility the window nearest to where Control Center's preferences want
  /// the item.
  std::optional<Rect> iconFrame() const;

  /// Whether the program's control is among Control Center's controls. False when that cannot be
  /// told.
  bool isMixerControlAdded() const;

 private:
  const Screen* mainScreen() const;
  double preferredPosition() const;

  Screens& screens_;
  WindowList& windowList_;
  Accessibility& accessibility_;
  Preferences& preferences_;
  Workspace& workspace_;
};

}  // namespace plemora
