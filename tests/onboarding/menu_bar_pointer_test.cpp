#include "onboarding/menu_bar_pointer.h"

#include <gtest/gtest.h>

#include "onboarding/guide_world.h"

namespace plemora {
namespace {

constexpr Rect icon{1000, 876, 30, 24};
constexpr double settled = 1.2;  // seconds

struct PointerWorld : GuideWorld {
  int opened = 0;
  std::optional<MenuBarPointer> pointer{std::in_place, onboarding, ripple};

  void show(const Rect& below = icon) {
    pointer->show(below, [this] { ++opened; });
  }
};

TEST(MenuBarPointer, RisesIntoPlaceBelowTheIconWithRingsAroundIt) {
  PointerWorld world;
  world.show();
  StageWindow& callout = *world.calloutWindow();
  EXPECT_EQ(callout.frame(), (Rect{885, 800, 260, 80}));  // 14 points above its place
  EXPECT_EQ(callout.alpha(), 0);
  EXPECT_EQ(callout.options.level, 25);
  EXPECT_EQ(callout.options.collectionBehavior, 337u);
  EXPECT_EQ(world.rippleWindow()->frame(), (Rect{983, 856, 64, 64}));
  EXPECT_EQ(world.rippleWindow()->options.collectionBehavior, 9u);
  EXPECT_TRUE(world.rippleWindow()->options.ignoresMouseEvents);
  world.pass(settled);
  EXPECT_EQ(callout.frame(), (Rect{885, 786, 260, 80}));
  EXPECT_EQ(callout.alpha(), 1);
  EXPECT_EQ(world.rippleWindow()->alpha(), 1);
}

TEST(MenuBarPointer, KeepsTheCalloutOnTheScreenOfTheIcon) {
  struct Case {
    const char* what;
    Rect icon;
    double x;
  };
  const Screen left{1, {0, 0, 1440, 900}, {0, 0, 1440, 876}, 1, 60};
  const Screen right{2, {1440, 0, 1000, 800}, {1440, 0, 1000, 776}, 1, 60};
  const std::vector<Case> cases = {
      {"right edge", {1410, 876, 30, 24}, 1172},
      {"left edge", {0, 876, 30, 24}, 8},
      {"left edge of the second", {1440, 776, 30, 24}, 1448},
      {"on none: that of the main one", {5000, 876, 30, 24}, 1172},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.what);
    PointerWorld world;
    world.screens.set({left, right});
    world.show(each.icon);
    EXPECT_EQ(world.calloutWindow()->frame().x, each.x);
  }
}

TEST(MenuBarPointer, GoesAtTheFirstClickAtOpenOrByItself) {
  struct Case {
    const char* what;
    std::function<void(PointerWorld&)> act;
    int opened;
  };
  const InputEvent press{InputEventType::leftMouseDown, 0, {10, 10}};
  const std::vector<Case> cases = {
      {"elsewhere", [&](PointerWorld& world) { world.input.sendElsewhere(press); }, 0},
      {"here", [&](PointerWorld& world) { EXPECT_FALSE(world.input.sendHere(press)); }, 0},
      {"open", [](PointerWorld& world) { world.calloutView->onOpen(); }, 1},
      {"nothing for 9 s", [](PointerWorld& world) { world.pass(9); }, 0},
      {"hide", [](PointerWorld& world) { world.pointer->hide(); }, 0},
      {"its end", [](PointerWorld& world) { world.pointer.reset(); }, 0},
  };
  for (const Case& each : cases) {
    for (const double before : {0.1, settled}) {
      SCOPED_TRACE(std::string(each.what) + " after " + std::to_string(before));
      PointerWorld world;
      world.show();
      world.pass(before);
      EXPECT_TRUE(world.pointer->isShown());
      each.act(world);
      EXPECT_EQ(world.monitors(), 0);
      world.pass(0.5);
      EXPECT_EQ(world.leftovers(), "");
      EXPECT_EQ(world.opened, each.opened);
    }
  }
}

TEST(MenuBarPointer, ASlowPressOnOpenStillCounts) {
  PointerWorld world;
  world.show();
  world.pass(settled);
  world.input.pressedButtons = leftMouseButton;
  world.input.sendHere({InputEventType::leftMouseDown, 0, {1000, 800}});
  world.pass(2);
  ASSERT_TRUE(world.calloutWindow() != nullptr && world.calloutWindow()->isOnScreen());
  world.input.pressedButtons = 0;
  world.calloutView->onOpen();
  world.pass(0.5);
  EXPECT_EQ(world.opened, 1);
  EXPECT_EQ(world.leftovers(), "");
}

TEST(MenuBarPointer, ShownAgainItPointsElsewhereAndLeavesNothingBehind) {
  PointerWorld world;
  world.show();
  for (const double pause : {settled, 0.05}) {
    world.pass(pause);
    world.show({400, 876, 30, 24});
    EXPECT_EQ(world.input.globalMonitors(), 1);
    EXPECT_EQ(world.input.localMonitors(), 1);
    EXPECT_EQ(world.windows.windows().size(), 2u);
    world.pointer->hide();
  }
  world.show({400, 876, 30, 24});
  world.pass(8.9);  // the time counts from the last one
  EXPECT_EQ(world.calloutWindow()->frame().x, 285);
  EXPECT_EQ(world.calloutWindow()->alpha(), 1);
  EXPECT_EQ(world.rippleWindow()->alpha(), 1);
  EXPECT_EQ(world.rippleWindow()->frame().midX(), 415);
}

TEST(MenuBarPointer, DoesWithoutWhatCannotBeShown) {
  PointerWorld world;
  OnboardingServices services = world.onboarding;
  services.contents = {};
  for (int round = 0; round < 2; ++round) {
    RipplePanel ripple(services);
    MenuBarPointer pointer(services, ripple);
    pointer.show(icon, {});
    world.pass(settled);
    EXPECT_TRUE(world.windows.windows().empty());
    pointer.hide();
    EXPECT_EQ(world.leftovers(), "");
    services.contents.makeCallout = [](CalloutView&) { return nullptr; };
    services.contents.makeRipple = [] { return nullptr; };
  }
}

}  // namespace
}  // namespace plemora
