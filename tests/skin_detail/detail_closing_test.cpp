#include <gmock/gmock.h>

#include <algorithm>
#include <optional>
#include <vector>

#include "skin_detail/detail_world.h"

namespace plemora {
namespace {

using testing::ElementsAre;
using Phase = ControlCenterDetail::Phase;

TEST(DetailClosingTest, AClickOnTheIconCollapsesThePanelAndOneElsewhereFadesIt) {
  constexpr double never = 1e9;
  struct Case {
    const char* what;
    Point location;
    InputEventType type = InputEventType::leftMouseDown;
    double sincePress = never;
    Phase then = Phase::open;
  };
  const Point middle = DetailWorld::middleOfIcon;
  const Point away{300, 300};
  for (const Case& each : std::vector<Case>{
           {"the icon", middle, InputEventType::leftMouseDown, never, Phase::collapsing},
           {"with the right button", middle, InputEventType::rightMouseDown, never,
            Phase::collapsing},
           {"2 points beside it",
            {1226, 888},
            InputEventType::leftMouseDown,
            never,
            Phase::collapsing},
           {"3 points beside it", {1225, 888}, InputEventType::leftMouseDown, never, Phase::fading},
           {"below it", {1243, 874}, InputEventType::leftMouseDown, never, Phase::collapsing},
           {"further below", {1243, 873.9}, InputEventType::leftMouseDown, never, Phase::fading},
           {"elsewhere", away, InputEventType::leftMouseDown, never, Phase::fading},
           {"elsewhere, right", away, InputEventType::rightMouseDown, never, Phase::fading},
           {"the click that opened it", away, InputEventType::leftMouseDown, 0.59, Phase::open},
           {"that one, on the icon", middle, InputEventType::leftMouseDown, 0.1, Phase::open},
           {"one after it", away, InputEventType::leftMouseDown, 0.61, Phase::fading},
       }) {
    DetailWorld world;
    world.presentOpen();
    world.lastHandledPress = world.clock.mediaTime() - each.sincePress;
    world.clickElsewhere(each.location, each.type);
    EXPECT_EQ(world.detail->phase(), each.then) << each.what;
    EXPECT_EQ(world.monitors(), each.then == Phase::open ? 2 : 0) << each.what;
  }
}

TEST(DetailClosingTest, ClicksInTheListOfReceiversAreNotElsewhere) {
  DetailWorld world;
  world.presentOpen();
  world.detail->panelView().presentRoutes({910, 500, 100, 20});
  world.pass(5);
  world.clickElsewhere({300, 300});
  EXPECT_EQ(world.detail->phase(), Phase::open);
  world.picker.close();
  world.pass(0.5);
  world.clickElsewhere({300, 300});
  EXPECT_EQ(world.detail->phase(), Phase::open) << "it was the click that closed the list";
  world.pass(0.2);
  world.clickElsewhere({300, 300});
  EXPECT_EQ(world.detail->phase(), Phase::fading);
}

TEST(DetailClosingTest, EscapeFadesItAndIsSwallowedWhileOtherKeysPass) {
  DetailWorld world;
  world.presentOpen();
  EXPECT_FALSE(world.input.sendHere({InputEventType::keyDown, 49, {}}));
  EXPECT_EQ(world.detail->phase(), Phase::open);
  EXPECT_TRUE(world.input.sendHere({InputEventType::keyDown, escapeKeyCode, {}}));
  EXPECT_EQ(world.detail->phase(), Phase::fading);
  EXPECT_FALSE(world.input.sendHere({InputEventType::keyDown, escapeKeyCode, {}}));
  world.detail->collapse();
  EXPECT_EQ(world.detail->phase(), Phase::fading) << "it is closing already";
}

TEST(DetailClosingTest, ItFadesWithTheMarkOfTheIcon) {
  DetailWorld world;
  world.presentOpen();
  world.detail->dismiss();
  EXPECT_EQ(world.window()->alpha(), 1);
  world.frames(6);
  EXPECT_NEAR(world.window()->alpha(), 0.5652174, 1e-4);
  EXPECT_NEAR(world.highlight()->alpha(), 0.5652174, 1e-4);
  EXPECT_EQ(world.glass(), DetailWorld::open);
  world.frames(7);
  EXPECT_NEAR(world.window()->alpha(), 0.0579710, 1e-4);
  EXPECT_TRUE(world.calls.empty());
  world.frames(1);
  EXPECT_EQ(world.leftovers(), "");
  EXPECT_THAT(world.calls, ElementsAre("closed"));
}

TEST(DetailClosingTest, DismissedWhileItGrowsItFadesWhereItIs) {
  DetailWorld world;
  world.detail->present(DetailWorld::module);
  world.frames(5);
  const Rect reached = world.glass();
  ASSERT_GT(reached.height, 64);
  ASSERT_LT(reached.height, 300);
  world.detail->dismiss();
  world.frames(10);
  EXPECT_EQ(world.glass(), reached);
  EXPECT_GT(world.window()->alpha(), 0);
  EXPECT_FALSE(world.window()->isKey);
  world.frames(10);
  EXPECT_EQ(world.leftovers(), "");
}

TEST(DetailClosingTest, ItWaitsForControlCenterButNotForLong) {
  for (const int comesBack : {1, 12, 1000}) {
    DetailWorld world;
    world.presentOpen();
    world.clickElsewhere(DetailWorld::middleOfIcon);
    EXPECT_FALSE(world.window()->isOnScreen()) << "Control Center has to be seen first";
    const int waits = std::min(comesBack, 35);
    world.frames(waits);
    EXPECT_TRUE(world.detail->isWaitingForControlCenter()) << comesBack;
    world.showControlCenter(comesBack == waits);
    world.frames(2);
    EXPECT_FALSE(world.detail->isWaitingForControlCenter()) << comesBack;
    EXPECT_TRUE(world.window()->isOnScreen()) << comesBack;
    EXPECT_EQ(world.highlight(), nullptr) << "Control Center shows its own";
    world.frames(30);
    EXPECT_THAT(world.calls, ElementsAre("collapsed", "closed")) << comesBack;
  }
}

TEST(DetailClosingTest, ItShrinksIntoTheModule) {
  DetailWorld world;
  world.presentOpen();
  world.detail->collapse();
  world.showControlCenter(true);
  world.frames(1);
  follow(world, DetailWorld::open, DetailWorld::module, 15, 23,
         {{0, 0, 0, 1}, {1, 0.2425349, 1, 0}, {4, 0.6708070, 1, 0}, {22, 0.9977819, 1, 0}});
  std::optional<Rect> last;
  world.detail->onCollapseFinished = [&] { last = world.glass(); };
  world.frames(1);
  EXPECT_EQ(last, DetailWorld::module) << "still there, so that nothing flickers";
  EXPECT_EQ(world.leftovers(), "");
}

TEST(DetailClosingTest, CollapsedWhileItGrowsItTurnsRoundWhereItIs) {
  DetailWorld world;
  world.detail->present(DetailWorld::module);
  world.frames(5);
  const Rect reached = world.glass();
  world.detail->collapse();
  world.showControlCenter(true);
  world.frames(1);
  EXPECT_EQ(world.glass(), reached);
  world.frames(1);
  EXPECT_LT(world.glass().height, reached.height);
}

TEST(DetailClosingTest, ItsRowsCloseItFirst) {
  DetailWorld world;
  world.presentOpen();
  world.workspace.openedURLs.clear();
  world.detail->panelView().openSoundSettings();
  EXPECT_EQ(world.detail->phase(), Phase::fading);
  EXPECT_THAT(world.workspace.openedURLs,
              ElementsAre("x-apple.systempreferences:com.apple.Sound-Settings.extension"));

  world.frames(30);
  world.presentOpen();
  std::optional<Phase> phaseAtSetUp;
  world.detail->onSetUp = [&] { phaseAtSetUp = world.detail->phase(); };
  world.detail->panelView().setUp();
  EXPECT_EQ(phaseAtSetUp, Phase::fading);
}

TEST(DetailClosingTest, NothingIsLeftWhicheverPhaseItEndsIn) {
  using Step = void (*)(DetailWorld&);
  for (const Step reach : std::vector<Step>{
           [](DetailWorld&) {},
           [](DetailWorld& world) { world.prepare(); },
           [](DetailWorld& world) { world.detail->present(DetailWorld::module); },
           [](DetailWorld& world) { world.presentOpen(); },
           [](DetailWorld& world) {
             world.presentOpen();
             world.content->resize(500);
           },
           [](DetailWorld& world) {
             world.presentOpen();
             world.detail->collapse();
           },
           [](DetailWorld& world) {
             world.presentOpen();
             world.detail->dismiss();
           },
       }) {
    for (const bool isDestroyed : {false, true}) {
      DetailWorld world;
      reach(world);
      world.calls.clear();
      if (isDestroyed) {
        world.detail.reset();
        EXPECT_FALSE(world.content->hasHeightHandler());
      } else {
        world.detail->tearDown();
        EXPECT_THAT(world.calls, ElementsAre("closed"));
        EXPECT_FALSE(world.detail->prepared);
      }
      world.frames(60);
      EXPECT_EQ(world.leftovers(), "");
    }
  }
}

}  // namespace
}  // namespace plemora
