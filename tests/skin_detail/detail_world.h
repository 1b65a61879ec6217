#pragma once

#include <gmock/gmock.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "adapters/stage/memory_preferences.h"
#include "adapters/stage/scripted_accessibility.h"
#include "adapters/stage/scripted_window_list.h"
#include "controlcenter/control_center_locator.h"
#include "menubar/menu_bar_world.h"
#include "skin/control_center_detail.h"
#include "support/obedient_control_center.h"

namespace plemora {

/// A Control Center whose module the detail panel grows out of. It is closed, as the press on the
/// module leaves it.
struct DetailWorld : MenuBarWorld {
  /// Right of the middle of the screen: the panel shares its top and its right edge.
  static constexpr Rect module{1066, 640, 148, 64};
  static constexpr Rect open{906, 404, 308, 300};
  static constexpr Rect icon{1228, 876, 30, 24};
  static constexpr Point middleOfIcon{1243, 888};
  static constexpr double frame = 1.0 / 60;

  MemoryPreferences preferences;
  ScriptedWindowList windowList;
  ScriptedAccessibility accessibility;
  ObedientControlCenter center{main, workspace, accessibility, windowList};
  ControlCenterLocator locator{screens, windowList, accessibility, preferences, workspace};
  SkinState state;
  std::shared_ptr<ScriptedHostedView> moduleView = std::make_shared<ScriptedHostedView>();
  double lastHandledPress = -std::numeric_limits<double>::infinity();
  std::vector<std::string> calls;
  std::optional<ControlCenterDetail> detail;

  DetailWorld() {
    defaults.setBoolean(PanelView::metersKey, false);  // their timer is not the panel's
    start();
    center.launch();
    center.appear();
    detail.emplace(*mixer, state,
                   DetailServices{{main, clock, defaults, workspace, application, screens, input,
                                   windows, links, bar, picker, look, updater},
                                  locator,
                                  [this](PanelView&) {
                                    ++contentsMade;
                                    return content;
                                  },
                                  [this](SkinState&) { return moduleView; },
                                  [this] { return lastHandledPress; }});
    detail->willPresent = [this] { calls.emplace_back("will present"); };
    detail->onCollapseFinished = [this] { calls.emplace_back("collapsed"); };
    detail->onClosed = [this] { calls.emplace_back("closed"); };
  }
  ~DetailWorld() { detail.reset(); }

  void prepare() {
    detail->build(module);
    detail->prepared = true;
  }
  /// As it is once it has grown.
  void presentOpen() {
    detail->present(module);
    frames(30);
    calls.clear();
  }
  void frames(int count) { pass(count * frame + 1e-9); }

  void showControlCenter(bool isShown, int layer = 26) {
    center.isOpen = isShown;
    windowList.windows.resize(1);
    if (isShown) {
      windowList.windows.push_back(
          {2, ObedientControlCenter::pid, "Control Center", layer, center.panel, 1.0});
    }
  }
  void hideIcon() {
    accessibility.setTrusted(false);
    windowList.windows.clear();
  }
  void clickElsewhere(const Point& location, InputEventType type = InputEventType::leftMouseDown) {
    input.pointer = location;
    input.sendElsewhere({type, 0, location});
  }

  StageWindow* window(const std::string& identifier = "control-center-detail") {
    const auto found = std::ranges::find_if(windows.windows(), [&](const StageWindow* each) {
      return each->options.identifier == identifier;
    });
    return found != windows.windows().end() ? *found : nullptr;
  }
  StageWindow* highlight() { return window("icon-highlight"); }
  StageSurface& surface() { return window()->stageSurface(); }

  /// Where the glass is on the screen, y up.
  Rect glass() {
    const Rect inWindow = surface().container.value_or(Rect{});
    const Rect around = window()->frame();
    return {around.x + inWindow.x, around.maxY() - inWindow.maxY(), inWindow.width,
            inWindow.height};
  }
  const HostedContent& shown(const std::shared_ptr<HostedView>& view) {
    return *std::ranges::find(surface().contents, view, &HostedContent::view);
  }
  /// Where a view is on the screen, y up.
  Rect place(const std::shared_ptr<HostedView>& view) {
    const Rect& inGlass = shown(view).frame;
    return {glass().x + inGlass.x, glass().maxY() - inGlass.maxY(), inGlass.width, inGlass.height};
  }

  /// What is left of a panel that should be gone.
  std::string leftovers() {
    std::string left;
    left += windows.windows().empty() ? "" : "windows ";
    left += monitors() == 0 ? "" : "monitors ";
    left += main.pendingTimers() == 0 ? "" : "timers ";
    left += content->isVisible || moduleView->isVisible ? "views " : "";
    return left;
  }
};

/// What is to be seen so many frames after the start of a movement.
struct DetailFrame {
  int number;
  double progress;
  double module;  ///< alphas
  double detail;
};

/// Lets the frames pass and looks at each: the glass is on its way from the one to the other.
inline void follow(DetailWorld& world, const Rect& from, const Rect& to, double fromRadius,
                   double toRadius, const std::vector<DetailFrame>& frames) {
  const auto at = [](double one, double other, double p) { return one + (other - one) * p; };
  int number = 0;
  for (const DetailFrame& each : frames) {
    SCOPED_TRACE(each.number);
    world.frames(each.number - number);
    number = each.number;
    const Rect glass = world.glass();
    EXPECT_NEAR(glass.x, at(from.x, to.x, each.progress), 1e-3);
    EXPECT_NEAR(glass.y, at(from.y, to.y, each.progress), 1e-3);
    EXPECT_NEAR(glass.width, at(from.width, to.width, each.progress), 1e-3);
    EXPECT_NEAR(glass.height, at(from.height, to.height, each.progress), 1e-3);
    EXPECT_NEAR(world.surface().containerRadius, at(fromRadius, toRadius, each.progress), 1e-3);
    EXPECT_NEAR(world.shown(world.moduleView).alpha, each.module, 1e-4);
    EXPECT_NEAR(world.shown(world.content).alpha, each.detail, 1e-4);
  }
}

}  // namespace plemora
