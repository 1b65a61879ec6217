#include <gmock/gmock.h>

#include <optional>
#include <string>
#include <vector>

#include "app/app_world.h"

// The module over the program's tiles, the panel that grows out of it, and how they take turns.

namespace plemora {
namespace {

using Phase = ControlCenterDetail::Phase;

constexpr double frame = 1.0 / 60;

/// With two tiles of the program in Control Center, which can be opened and closed.
struct SkinnedWorld : AppWorld {
  static constexpr Point besideSlider{1080, 790};
  static constexpr Point icon{1243, 888};
  static constexpr const char* tileSignal = "com.quorvane.mixer.tile-pressed";

  SkinnedWorld() {
    queues.setImmediate(true);
    const auto panel = accessibility.add(accessibility.root(center.pid), "AXWindows");
    for (const double x : {1060.0, 1226.0}) {
      const auto tile = accessibility.add(panel, "AXChildren",
                                          {{"AXIdentifier", "com.quorvane.mixer.controls.tile"}});
      accessibility.setFrame(tile, {x, 100, 150, 64});
    }
    launch();
  }

  ControlCenterSkin& skin() { return *delegate->skin(); }
  ControlCenterDetail& detail() { return *delegate->detail(); }

  void openCenter() {
    windowList.windows.resize(1);
    windowList.windows.push_back({2, center.pid, "Control Center", 26, center.panel, 1.0});
  }
  void closeCenter() { windowList.windows.resize(1); }
  /// Until the module stands in the tiles' place.
  void showModule() {
    openCenter();
    pass(1.5);
    ASSERT_TRUE(skin().isShowing());
  }
  void send(InputEventType type, const Point& location) {
    input.pressedButtons = type == InputEventType::leftMouseDown ? leftMouseButton : 0;
    input.pointer = location;
    input.sendElsewhere({type, 0, location});
  }
  /// Presses the module beside its slider and lets go, upon which Control Center closes.
  void pressModule() {
    send(InputEventType::leftMouseDown, besideSlider);
    closeCenter();
    send(InputEventType::leftMouseUp, besideSlider);
  }
};

TEST(AppSkinTest, ThePanelTakesTheModulesPlaceAndGivesItBack) {
  SkinnedWorld world;
  world.showModule();
  world.send(InputEventType::leftMouseDown, SkinnedWorld::besideSlider);
  ASSERT_NE(world.window("control-center-detail"), nullptr);
  EXPECT_TRUE(world.detail().prepared);
  EXPECT_EQ(world.window("control-center-detail")->alpha(), 0);
  EXPECT_TRUE(world.skin().isShowing()) << "until the button is let go";
  EXPECT_EQ(world.input.postedKeys, std::vector<int>{escapeKeyCode});
  world.closeCenter();
  world.pass(0.2);

  world.send(InputEventType::leftMouseUp, SkinnedWorld::besideSlider);
  EXPECT_EQ(world.detail().phase(), Phase::expanding);
  EXPECT_EQ(world.window("control-center-detail")->alpha(), 1);
  EXPECT_FALSE(world.skin().isShowing());
  EXPECT_TRUE(world.skin().isSuppressed);
  world.pass(0.55);
  world.send(InputEventType::leftMouseDown, SkinnedWorld::icon);
  EXPECT_EQ(world.detail().phase(), Phase::open) << "too soon after the press";
  world.pass(0.1);
  world.send(InputEventType::leftMouseDown, SkinnedWorld::icon);
  EXPECT_EQ(world.detail().phase(), Phase::collapsing);

  world.openCenter();
  for (int i = 0; i < 60 && world.detail().phase(); ++i) {
    EXPECT_FALSE(world.skin().isShowing()) << "not both of them";
    world.pass(frame);
  }
  EXPECT_EQ(world.detail().phase(), std::nullopt);
  EXPECT_TRUE(world.skin().isShowing());
  EXPECT_FALSE(world.skin().isSuppressed);
  EXPECT_EQ(world.window("skin")->alpha(), 1) << "without a moment of neither";
}

TEST(AppSkinTest, APanelThatFadesAwayLeavesTheModuleToControlCenter) {
  SkinnedWorld world;
  world.showModule();
  world.pressModule();
  world.pass(0.5);
  EXPECT_TRUE(world.input.sendHere({InputEventType::keyDown, escapeKeyCode, {}}));
  EXPECT_TRUE(world.skin().isSuppressed);
  world.pass(0.3);
  EXPECT_FALSE(world.skin().isSuppressed);
  EXPECT_FALSE(world.skin().isShowing());
  world.showModule();
  world.send(InputEventType::leftMouseDown, SkinnedWorld::besideSlider);
  world.send(InputEventType::leftMouseUp, SkinnedWorld::besideSlider);
  EXPECT_EQ(world.detail().phase(), Phase::expanding);
}

TEST(AppSkinTest, ATileThatReportsThePressOfTheModuleOpensNothing) {
  struct Case {
    const char* what;
    bool isShowing;
    double sincePress;  // of the module
    bool opens;
  };
  for (const Case& each : std::vector<Case>{
           {"the module is there", true, 9, false},
           {"it was pressed just now", false, 0.5, false},
           {"nearly a second ago", false, 0.99, false},
           {"over a second ago", false, 1.01, true},
       }) {
    SkinnedWorld world;
    world.showModule();
    world.pressModule();
    world.detail().tearDown();
    if (each.isShowing) {
      world.openCenter();
    }
    world.pass(each.sincePress);
    ASSERT_EQ(world.skin().isShowing(), each.isShowing) << each.what;
    world.notifications.post(SkinnedWorld::tileSignal);
    world.pass(0.11);
    EXPECT_EQ(world.panelX(), std::nullopt) << each.what;
    world.pass(0.02);
    EXPECT_EQ(world.panelX().has_value(), each.opens) << each.what;
  }
}

TEST(AppSkinTest, TheModuleGoesWhenTheProgramEnds) {
  for (const bool isReplaced : {false, true}) {
    SkinnedWorld world;
    world.showModule();
    world.defaults.setBoolean("soundReplaced", isReplaced);
    world.delegate->applicationWillTerminate();
    EXPECT_FALSE(world.skin().isShowing());
    EXPECT_EQ(world.accessibility.observers(), 0);
    world.openCenter();
    world.pass(5);
    EXPECT_FALSE(world.skin().isShowing());
  }
}

}  // namespace
}  // namespace plemora
