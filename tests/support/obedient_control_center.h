#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "adapters/stage/scripted_accessibility.h"
#include "adapters/stage/scripted_window_list.h"
#include "adapters/stage/scripted_workspace.h"
#include "platform/main_queue.h"

namespace plemora {

/// A Control Center that does what its buttons say, a while after they were pressed.
struct ObedientControlCenter {
  using ElementID = ScriptedAccessibility::ElementID;

  static constexpr std::int32_t pid = 300;
  static constexpr Rect panel{1050, 0, 340, 600};
  static constexpr Rect icon{1228, 0, 30, 24};

  MainQueue& main;
  ScriptedWorkspace& workspace;
  ScriptedAccessibility& accessibility;
  ScriptedWindowList& windowList;

  // Seconds.
  double openDelay = 0;
  double editDelay = 0;
  bool hasEditButton = true;
  std::function<void(const std::string&)> pressed = [](const std::string&) {};  // "item", "edit"

  bool isOpen = false;
  bool isEditing = false;
  std::vector<Timer> timers = {};

  /// Starts the process, without any elements.
  void launch() {
    RunningApplication application;
    application.pid = pid;
    application.bundleID = "com.apple.controlcenter";
    workspace.launch(application);
  }

  /// The menu bar item and the panel's window, which has its elements also while it is closed.
  void appear() {
    const ElementID root = accessibility.root(pid);
    const ElementID bar = accessibility.make();
    accessibility.set(root, "AXExtrasMenuBar", bar);
    const ElementID item = accessibility.add(
        bar, "AXChildren", {{"AXIdentifier", "com.apple.menuextra.controlcenter"}});
    accessibility.setFrame(item, icon);
    accessibility.setAction(item, "AXPress", [this] { press("item", openDelay, isOpen); });
    const ElementID window = accessibility.add(root, "AXWindows", {{"AXRole", "AXWindow"}});
    if (hasEditButton) {
      const ElementID button = accessibility.add(window, "AXChildren", {{"AXRole", "AXButton"}});
      accessibility.setFrame(button, {1100, 560, 120, 24});
      accessibility.setAction(button, "AXPress", [this] { press("edit", editDelay, isEditing); });
    }
    updateWindows();
  }

  void quit() {
    workspace.quit(pid);
    vanish();
  }

  /// What is left to do when something else has ended the process.
  void vanish() {
    accessibility.removeApplication(pid);
    timers.clear();
    windowList.windows.clear();
    isOpen = isEditing = false;
  }

 private:
  void press(const std::string& what, double delay, bool& state) {
    pressed(what);
    timers.push_back(main.after(delay, [this, &state] {
      state = !state;
      updateWindows();
    }));
  }

  void updateWindows() {
    const auto window = [](const Rect& bounds, int layer) {
      return WindowInfo{1, pid, "Control Center", layer, bounds, 1.0};
    };
    windowList.windows = {window(icon, statusWindowLevel)};
    if (isOpen) {
      windowList.windows.push_back(window(panel, 26));
    }
    if (isEditing) {
      windowList.windows.push_back(window({0, 0, 1440, 900}, 26));
    }
  }
};

}  // namespace plemora
