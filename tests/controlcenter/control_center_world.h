#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "adapters/stage/memory_preferences.h"
#include "adapters/stage/scripted_accessibility.h"
#include "adapters/stage/scripted_screens.h"
#include "adapters/stage/scripted_window_list.h"
#include "adapters/stage/scripted_workspace.h"
#include "adapters/stage/virtual_clock.h"
#include "adapters/stage/virtual_main_queue.h"
#include "controlcenter/control_center_locator.h"

namespace plemora {

/// Control Center as the window server, accessibility and its preferences tell of it, word for word
/// as a test has it. One screen of 1440 x 900 at first.
struct ControlCenterWorld {
  using ElementID = ScriptedAccessibility::ElementID;

  static constexpr std::int32_t pid = 300;
  static constexpr int panelLayer = 26;

  VirtualClock clock;
  VirtualMainQueue main{clock};
  ScriptedScreens screens;
  ScriptedWindowList windowList;
  ScriptedAccessibility accessibility;
  std::shared_ptr<PreferenceStore> stored = std::make_shared<PreferenceStore>();
  MemoryPreferences preferences{stored};
  ScriptedWorkspace workspace;
  ControlCenterLocator locator{screens, windowList, accessibility, preferences, workspace};

  /// Starts the process, without any elements.
  void launch(std::int32_t as = pid, const std::string& bundleID = "com.apple.controlcenter") {
    RunningApplication application;
    application.pid = as;
    application.bundleID = bundleID;
    workspace.launch(application);
  }
  void quit() {
    workspace.quit(pid);
    accessibility.removeApplication(pid);
  }

  /// Gives the process its menu bar item.
  ElementID addMenuItem() {
    const ElementID root = accessibility.root(pid);
    const ElementID bar = accessibility.make();
    accessibility.set(root, "AXExtrasMenuBar", bar);
    return accessibility.add(bar, "AXChildren",
                             {{"AXIdentifier", "com.apple.menuextra.controlcenter"}});
  }

  static WindowInfo window(const Rect& bounds, int layer, double alpha = 1) {
    return {1, pid, "Control Center", layer, bounds, alpha};
  }
  static WindowInfo icon(double x, double width = 30) {
    return window({x, 0, width, 24}, statusWindowLevel);
  }

  void store(const std::string& key, const PreferenceValue& value) {
    stored->values("com.apple.controlcenter", PreferenceHost::any)[key] = value;
  }
};

}  // namespace plemora
