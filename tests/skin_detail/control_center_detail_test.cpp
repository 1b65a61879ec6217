#include "skin/control_center_detail.h"

#include <gmock/gmock.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "skin_detail/detail_world.h"

namespace plemora {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Phase = ControlCenterDetail::Phase;

TEST(ControlCenterDetailTest, APreparedPanelWaitsUnseenForTheButtonToBeLetGo) {
  DetailWorld world;
  world.prepare();
  world.frames(60);
  ASSERT_NE(world.window(), nullptr);
  EXPECT_TRUE(world.window()->isOnScreen()) << "drawn ahead";
  EXPECT_EQ(world.window()->alpha(), 0);
  EXPECT_TRUE(world.window()->options.ignoresMouseEvents);
  EXPECT_EQ(world.glass(), DetailWorld::module);
  EXPECT_EQ(world.highlight(), nullptr);
  EXPECT_EQ(world.monitors(), 0);
  EXPECT_EQ(world.main.pendingTimers(), 0);
  EXPECT_FALSE(world.detail->panelView().isVisible());
  EXPECT_THAT(world.calls, IsEmpty());

  world.detail->collapse();
  world.detail->dismiss();
  world.frames(60);
  EXPECT_EQ(world.detail->phase(), Phase::expanding) << "nothing closes what was not opened";
  EXPECT_THAT(world.calls, IsEmpty());

  const int windowsBefore = world.windows.made();
  world.detail->present(DetailWorld::module);
  EXPECT_EQ(world.windows.made(), windowsBefore + 1) << "the highlight alone is new";
  EXPECT_FALSE(world.detail->prepared);
  EXPECT_THAT(world.calls, ElementsAre("will present"));
  EXPECT_EQ(world.window()->alpha(), 1);
  EXPECT_FALSE(world.window()->options.ignoresMouseEvents);
  EXPECT_TRUE(world.content->isVisible && world.moduleView->isVisible);
  EXPECT_TRUE(world.detail->panelView().isVisible());
}

TEST(ControlCenterDetailTest, APanelForAnotherPlaceIsBuiltAnew) {
  DetailWorld world;
  world.prepare();
  world.detail->present({100, 640, 148, 64});
  EXPECT_THAT(world.calls, ElementsAre("closed", "will present"));
  EXPECT_EQ(world.glass(), (Rect{100, 640, 148, 64}));
  world.frames(30);
  EXPECT_EQ(world.glass(), (Rect{100, 404, 308, 300}));
  EXPECT_EQ(world.contentsMade, 1);
}

TEST(ControlCenterDetailTest, ThePanelGrowsFrameByFrame) {
  struct Frame {
    int number;
    double progress;
    double module;
    double detail;
  };
  DetailWorld world;
  world.detail->present(DetailWorld::module);
  const Rect& module = DetailWorld::module;
  const Rect& open = DetailWorld::open;
  int number = 0;
  for (const Frame& each : std::vector<Frame>{
           {0, 0, 1, 0},
           {1, 0, 1, 0},
           {2, 0, 1, 0},
           {3, 0.0989249, 0, 0.789249},
           {4, 0.3632568, 0, 1},
           {6, 0.6820412, 0, 1},
           {12, 0.9604095, 0, 1},
           {20, 0.9975384, 0, 1},
       }) {
    world.frames(each.number - number);
    number = each.number;
    const double p = each.progress;
    EXPECT_TRUE(
        isNear(world.glass(), {1066 - 160 * p, 640 - 236 * p, 148 + 160 * p, 64 + 236 * p}, 1e-3))
        << each.number;
    EXPECT_NEAR(world.surface().containerRadius, 23 - 8 * p, 1e-3) << each.number;
    EXPECT_NEAR(world.alpha(world.moduleView), each.module, 1e-4) << each.number;
    EXPECT_NEAR(world.alpha(world.content), each.detail, 1e-4) << each.number;
    EXPECT_EQ(world.window()->frame(), open) << "the window stands still";
    EXPECT_TRUE(isNear(world.place(world.moduleView), module)) << each.number;
    EXPECT_TRUE(isNear(world.place(world.content), {world.glass().x, 404, 308, 300}))
        << each.number;
    EXPECT_TRUE(
        isNear(world.surface().layer->frame, {0, 0, world.glass().width, world.glass().height}))
        << "the rim goes along";
    EXPECT_EQ(world.detail->phase(), Phase::expanding);
    EXPECT_FALSE(world.window()->isKey);
  }
  world.frames(1);
  EXPECT_EQ(world.detail->phase(), Phase::open);
  EXPECT_EQ(world.glass(), open);
  EXPECT_EQ(world.surface().containerRadius, 15);
  EXPECT_TRUE(world.window()->isKey);
  EXPECT_EQ(world.main.pendingTimers(), 0) << "nothing runs while it is open";
}

TEST(ControlCenterDetailTest, ItsWindowIsAboveControlCentersPanel) {
  struct Case {
    std::optional<int> layer;  // of Control Center's panel; none: it is closed
    int level;
  };
  for (const Case& each :
       std::vector<Case>{{std::nullopt, 101}, {26, 101}, {101, 102}, {150, 151}}) {
    DetailWorld world;
    world.showControlCenter(each.layer.has_value(), each.layer.value_or(0));
    world.detail->build(DetailWorld::module);
    EXPECT_EQ(world.window()->level(), each.level);
    world.showControlCenter(false);
    world.presentOpen();
    world.detail->collapse();
    world.showControlCenter(each.layer.has_value(), each.layer.value_or(0));
    world.pass(each.layer ? 0.1 : 0.65);
    ASSERT_TRUE(world.window());
    EXPECT_EQ(world.window()->level(), each.level) << "Control Center may be back at another one";
  }
}

TEST(ControlCenterDetailTest, TheIconOfControlCenterIsMarkedWhileThePanelIsOpen) {
  DetailWorld world;
  world.presentOpen();
  ASSERT_NE(world.highlight(), nullptr);
  EXPECT_EQ(world.highlight()->frame(), DetailWorld::icon);
  EXPECT_GT(world.highlight()->level(), statusWindowLevel);
  EXPECT_TRUE(world.highlight()->isOnScreen());
  EXPECT_TRUE(world.highlight()->options.ignoresMouseEvents);
  const auto layer = world.highlight()->stageSurface().layer;
  ASSERT_NE(layer, nullptr);
  EXPECT_EQ(layer->cornerRadius, layer->frame.height / 2);

  world.detail->tearDown();
  world.accessibility.setTrusted(false);
  world.windowList.windows.clear();
  world.presentOpen();
  EXPECT_EQ(world.highlight(), nullptr) << "nobody knows where the icon is";
}

TEST(ControlCenterDetailTest, AnOpenPanelFollowsItsContent) {
  struct Frame {
    int number;
    double height;
  };
  DetailWorld world;
  world.presentOpen();
  world.content->resize(300.4);
  world.content->resize(0);
  EXPECT_EQ(world.detail->phase(), Phase::open) << "no change to speak of";

  world.content->resize(400);
  EXPECT_EQ(world.detail->phase(), Phase::resizing);
  int number = 0;
  for (const Frame& each :
       std::vector<Frame>{{1, 328.3469}, {3, 363.2121}, {12, 398.1684}, {18, 399.7521}}) {
    world.frames(each.number - number);
    number = each.number;
    EXPECT_TRUE(isNear(world.glass(), {906, 704 - each.height, 308, each.height}, 1e-3))
        << each.number;
    EXPECT_EQ(world.surface().containerRadius, 15);
    EXPECT_EQ(world.alpha(world.moduleView), 0);
    EXPECT_EQ(world.alpha(world.content), 1);
  }
  world.frames(1);
  EXPECT_EQ(world.detail->phase(), Phase::open);
  EXPECT_EQ(world.glass(), (Rect{906, 304, 308, 400}));
  EXPECT_EQ(world.window()->frame(), (Rect{906, 304, 308, 400}));
  EXPECT_EQ(world.main.pendingTimers(), 0);

  world.content->resize(500);
  world.frames(3);
  const double reached = world.glass().height;
  world.content->resize(200);
  world.frames(1);
  EXPECT_LT(world.glass().height, reached) << "it turns round where it is";
  EXPECT_GT(world.glass().height, 300);
  EXPECT_EQ(world.window()->frame().height, reached) << "until it has shrunk";
  world.frames(30);
  EXPECT_EQ(world.glass(), (Rect{906, 504, 308, 200}));
  EXPECT_EQ(world.window()->frame(), (Rect{906, 504, 308, 200})) << "it swallows no clicks below";
}

TEST(ControlCenterDetailTest, AHeightThatComesAtABadTimeCountsLater) {
  DetailWorld world;
  world.prepare();
  world.content->resize(250);
  EXPECT_EQ(world.glass(), DetailWorld::module);
  EXPECT_EQ(world.detail->panelFrame(), (Rect{906, 454, 308, 250}));
  world.detail->present(DetailWorld::module);
  world.frames(8);
  world.content->resize(400);
  world.frames(12);
  EXPECT_EQ(world.detail->phase(), Phase::expanding);
  EXPECT_TRUE(isNear(world.glass(), {906, 454, 308, 250}, 1)) << "it goes on to where it was going";
  EXPECT_EQ(world.window()->frame(), (Rect{906, 304, 308, 400}));
  world.frames(2);
  EXPECT_EQ(world.detail->phase(), Phase::resizing);
  world.frames(30);
  EXPECT_EQ(world.glass(), (Rect{906, 304, 308, 400}));

  world.detail->dismiss();
  world.content->resize(500);
  EXPECT_EQ(world.detail->phase(), Phase::fading);
  EXPECT_EQ(world.glass(), (Rect{906, 304, 308, 400}));
  world.frames(30);
  world.content->resize(600);
  EXPECT_EQ(world.leftovers(), "");
}

TEST(ControlCenterDetailTest, AHighContentScrollsInThePanel) {
  DetailWorld world;
  world.content->height = 2000;
  world.presentOpen();
  EXPECT_EQ(world.content->maximumHeight, 860);
  EXPECT_EQ(world.glass(), (Rect{906, 8, 308, 860}));
}

TEST(ControlCenterDetailTest, WithoutContentThereIsNoPanel) {
  DetailWorld world;
  world.content = nullptr;
  world.prepare();
  world.detail->present(DetailWorld::module);
  world.detail->collapse();
  world.detail->dismiss();
  EXPECT_EQ(world.detail->phase(), std::nullopt);
  EXPECT_EQ(world.window(), nullptr);
  EXPECT_EQ(world.highlight(), nullptr);
  EXPECT_THAT(world.calls, testing::Not(testing::Contains("will present")))
      << "the module must not be hidden for it";
  world.content = std::make_shared<ScriptedHostedView>();
  world.presentOpen();
  EXPECT_EQ(world.glass(), DetailWorld::open) << "another time there may be some";
}

}  // namespace
}  // namespace plemora
