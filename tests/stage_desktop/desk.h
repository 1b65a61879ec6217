#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "adapters/stage/desktop/stage_desktop.h"
#include "adapters/stage/fresh_layout.h"
#include "adapters/stage/memory_preferences.h"
#include "platform/window_list.h"

namespace plemora {

inline constexpr const char* boxesKey = "boxes";
inline constexpr const char* boxesDomain = "com.apple.controlcenter.bentoboxes";
inline constexpr const char* controlsKey =
    "ControlCenterDisplayableChronoControlsProviderConfiguration";
inline constexpr const char* controlsDomain = "com.apple.controlcenter";

/// A fresh system's desktop, with an app installed that offers a control. The program runs, but is
/// nothing but what the test makes of its seams.
class Desk : public testing::Test {
 protected:
  std::shared_ptr<PreferenceStore> store = std::make_shared<PreferenceStore>();
  MemoryPreferences programPreferences{store};
  MemoryPreferences systemPreferences{store};
  std::unique_ptr<StageDesktop> desktop;
  int presses = 0;  // of the app's control

  /// Stores the fresh layout, and raises the curtain.
  void SetUp() override {
    storeFreshLayout(programPreferences);
    begin();
  }

  void begin() {
    desktop = std::make_unique<StageDesktop>(
        StageDesktop::PreferencePair{programPreferences, systemPreferences});
    desktop->extensions.installed.push_back({.extensionID = "org.example.radio.controls",
                                             .containerID = "org.example.radio",
                                             .kind = "org.example.radio.play",
                                             .displayName = "Radio",
                                             .description = "Plays.",
                                             .perform = [this] { ++presses; }});
    desktop->program.start("org.example.program", "Program");
  }

  StageControlCenter& center() { return desktop->controlCenter; }

  void storeValues(const std::string& boxes, const std::string& controls) {
    programPreferences.setValue(boxesKey, PreferenceData{boxes}, boxesDomain,
                                PreferenceHost::current);
    programPreferences.setValue(controlsKey, PreferenceData{controls}, controlsDomain,
                                PreferenceHost::any);
    ASSERT_TRUE(programPreferences.synchronize(boxesDomain, PreferenceHost::current));
    ASSERT_TRUE(programPreferences.synchronize(controlsDomain, PreferenceHost::any));
  }

  /// The layout that is stored now, as Control Center would read it.
  StageTileGrid stored() {
    MemoryPreferences reader(store);
    const auto bytes = [&](const char* key, const char* domain, PreferenceHost host) {
      return std::get<PreferenceData>(reader.value(key, domain, host).value()).bytes;
    };
    std::string why;
    auto grid = StageTileGrid::read(bytes(boxesKey, boxesDomain, PreferenceHost::current),
                                    bytes(controlsKey, controlsDomain, PreferenceHost::any), why);
    EXPECT_TRUE(grid) << why;
    return grid.value_or(StageTileGrid());
  }

  /// Puts the app's control into the stored layout, as another program might, and restarts Control
  /// Center.
  void addNewControl(const std::string& id = "NEW") {
    StageTileGrid grid = stored();
    ASSERT_TRUE(grid.addControl(desktop->extensions.installed[0], id, "rect2x1"));
    storeValues(grid.boxesValue(), grid.controlsValue());
    restartCenter();
  }

  void restartCenter() {
    center().kill();
    desktop->advance(1.1);
    ASSERT_TRUE(center().isRunning());
  }

  void openCenter() {
    center().open();
    desktop->advance(0.5);
    ASSERT_TRUE(center().isOpen());
  }

  void enterAndLeaveEditMode() {
    center().pressEditButton();
    center().pressEditButton();
  }

  const StageTile& module(std::string_view name) {
    const StageTile* tile = center().grid().module(name);
    EXPECT_NE(tile, nullptr) << name;
    return *tile;
  }

  /// Windows of that kind as others see them, front to back.
  std::vector<WindowInfo> windowsOf(StageWindowKind kind) {
    std::vector<WindowInfo> found;
    const auto records = desktop->windowServer.records();
    const auto infos = desktop->windowServer.onScreenWindows();
    for (std::size_t index = 0; index < infos.size(); ++index) {
      if (records[index].kind == kind) {
        found.push_back(infos[index]);
      }
    }
    return found;
  }

  std::unique_ptr<PanelWindow> showPanel(const Rect& frame, int level = 0,
                                         bool ignoresMouseEvents = false) {
    PanelWindowOptions options;
    options.identifier = "panel";
    options.level = level;
    options.ignoresMouseEvents = ignoresMouseEvents;
    auto window = desktop->windows.makePanel(options);
    window->setFrame(frame);
    window->order(WindowOrder::front);
    return window;
  }

  Point iconOf(const std::string& identifier) {
    const auto item = desktop->menuBar.extra(identifier);
    EXPECT_NE(item, nullptr) << identifier;
    return {item->frame.midX(), item->frame.midY()};
  }
  Point centerIcon() { return iconOf("com.apple.menuextra.controlcenter"); }

  static Point middle(const Rect& rect) { return {rect.midX(), rect.midY()}; }
};

}  // namespace plemora
