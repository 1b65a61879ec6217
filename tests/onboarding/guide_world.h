#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "adapters/stage/memory_files.h"
#include "adapters/stage/memory_preferences.h"
#include "adapters/stage/scripted_accessibility.h"
#include "adapters/stage/scripted_window_list.h"
#include "controlcenter/control_center_layout.h"
#include "controlcenter/control_center_locator.h"
#include "menubar/menu_bar_world.h"
#include "onboarding/helper_view.h"
#include "onboarding/onboarding_services.h"
#include "onboarding/ripple_panel.h"
#include "platform/file_drag.h"
#include "support/obedient_control_center.h"

namespace plemora {

struct SizedView : ScriptedHostedView {
  double width = 260;

  explicit SizedView(double wantedHeight) { height = wantedHeight; }
  double fittingWidth() override { return width; }
};

struct HeldFileDrag : FileDrag {
  bool works = true;
  std::string path;
  std::function<void(bool)> ended;

  bool begin(const std::string& value, std::function<void(bool)> handler) override {
    path = value;
    ended = std::move(handler);
    return works;
  }
};

/// A desktop with System Settings and Control Center, on which the guides of setup are shown.
struct GuideWorld : MenuBarWorld {
  static constexpr std::int32_t settingsPid = 700;
  static constexpr double frameTime = 1.0 / 60;

  MemoryPreferences preferences;
  MemoryFiles files{""};
  ScriptedWindowList windowList;
  ScriptedAccessibility accessibility;
  ObedientControlCenter center{main, workspace, accessibility, windowList};
  ControlCenterLocator locator{screens, windowList, accessibility, preferences, workspace};
  ControlCenterLayout layout{preferences, files, clock, workspace};
  HeldFileDrag fileDrag;
  std::shared_ptr<SizedView> helperContent = std::make_shared<SizedView>(160);
  std::shared_ptr<SizedView> calloutContent = std::make_shared<SizedView>(80);
  std::shared_ptr<SizedView> rippleContent = std::make_shared<SizedView>(64);
  HelperView* helperView = nullptr;
  CalloutView* calloutView = nullptr;
  OnboardingServices onboarding{{main, clock, defaults, workspace, application, screens, input,
                                 windows, links, bar, picker, look, updater},
                                layout,
                                locator,
                                preferences,
                                accessibility,
                                consent,
                                windowList,
                                system,
                                fileDrag,
                                {{},
                                 [this](HelperView& view) {
                                   helperView = &view;
                                   return helperContent;
                                 },
                                 [this](CalloutView& view) {
                                   calloutView = &view;
                                   return calloutContent;
                                 },
                                 [this] { return rippleContent; }},
                                ownPid};
  RipplePanel ripple{onboarding};

  /// System Settings with its window there; global, y up.
  void showSettings(const Rect& frame) {
    launch(settingsPid, "com.apple.systempreferences", "System Settings");
    const double top = screens.screens().get().front().frame.maxY();
    windowList.windows = {{.number = 1,
                           .ownerPid = settingsPid,
                           .layer = 0,
                           .bounds = Rect{frame.x, top - frame.maxY(), frame.width, frame.height},
                           .alpha = 1.0}};
  }
  void closeSettings() {
    workspace.quit(settingsPid);
    windowList.windows.clear();
  }

  StageWindow* find(const std::string& identifier) {
    const auto found = std::ranges::find_if(windows.windows(), [&](const StageWindow* each) {
      return each->options.identifier == identifier;
    });
    return found != windows.windows().end() ? *found : nullptr;
  }
  StageWindow* helperWindow() { return find("setup-helper"); }
  StageWindow* rippleWindow() { return find("ripple"); }
  StageWindow* calloutWindow() { return find("menu-bar-callout"); }

  /// What is left of guides that should be gone.
  std::string leftovers() {
    std::string left;
    left += windows.windows().empty() ? "" : "windows ";
    left += monitors() == 0 ? "" : "monitors ";
    left += main.pendingTimers() == 0 ? "" : "timers ";
    left += helperContent->isVisible || calloutContent->isVisible || rippleContent->isVisible
                ? "views "
                : "";
    return left;
  }
};

inline void expectNear(const Rect& is, const Rect& wanted, double tolerance = 1e-6) {
  EXPECT_NEAR(is.x, wanted.x, tolerance);
  EXPECT_NEAR(is.y, wanted.y, tolerance);
  EXPECT_NEAR(is.width, wanted.width, tolerance);
  EXPECT_NEAR(is.height, wanted.height, tolerance);
}

}  // namespace plemora
