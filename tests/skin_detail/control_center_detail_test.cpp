#include "skin/control_center_detail.h"

#include <gmock/gmock.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "skin_detail/detail_world.h"

namespace plemora {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
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
  DetailWorld world;
  world.detail->present(DetailWorld::module);
  follow(world, DetailWorld::module, DetailWorld::open, 23, 15,
         {{0, 0, 1, 0}, {2, 0, 1, 0}, {3, 0.0989249, 0, 0.789249}, {4, 0.3632568, 0, 1}});
  EXPECT_EQ(world.window()->frame(), DetailWorld::open) << "the window stands still";
  EXPECT_NEAR(world.place(world.moduleView).x, DetailWorld::module.x, 1e-6);
  EXPECT_NEAR(world.place(world.moduleView).maxY(), DetailWorld::module.maxY(), 1e-6);
  EXPECT_NEAR(world.place(world.content).x, world.glass().x, 1e-6);
  EXPECT_EQ(world.place(world.content).size(), DetailWorld::open.size()) << "nothing stretches";
  EXPECT_EQ(world.surface().layer->frame.size(), world.glass().size()) << "the rim goes along";
  world.frames(16);
  EXPECT_NEAR(world.glass().height, 64 + 236 * 0.9975384, 1e-3);
  EXPECT_EQ(world.detail->phase(), Phase::expanding);
  EXPECT_FALSE(world.window()->isKey);
  world.frames(1);
  EXPECT_EQ(world.detail->phase(), Phase::open);
  EXPECT_EQ(world.glass(), DetailWorld::open);
  EXPECT_EQ(world.surface().containerRadius, 15);
  EXPECT_TRUE(world.window()->isKey);
  EXPECT_EQ(world.main.pendingTimers(), 0) << "nothing runs while it is open";
}

TEST(ControlCenterDetailTest, ItFollowsTheAppearanceAndIsLighterWhereItsTextIsBlack) {
  DetailWorld world;
  const auto veil = [&world] { return world.surface().layer->sublayers.at(0)->opacity; };
  world.presentOpen();
  EXPECT_TRUE(world.detail->panelView().isDark.get());
  EXPECT_FALSE(world.window()->options.isDark) << "its glass is the system's";
  EXPECT_EQ(veil(), 0);
  world.appearance.setDark(false);
  EXPECT_FALSE(world.detail->panelView().isDark.get());
  EXPECT_EQ(veil(), 0.5);

  // It comes and goes with the growth, so that the panel begins and ends as the module.
  world.detail->collapse();
  world.showControlCenter(true);
  world.frames(2);
  EXPECT_NEAR(veil(), 0.5 * (1 - 0.2425349), 1e-6);
  world.frames(30);
  world.detail->present(DetailWorld::module);
  EXPECT_EQ(veil(), 0);
  world.frames(4);
  EXPECT_NEAR(veil(), 0.5 * 0.3632568, 1e-6);
}

TEST(ControlCenterDetailTest, ItsGlassGoesOverFromTheModulesToThePanels) {
  DetailWorld world;
  world.defaults.setString("skinStyle", "cc,r=3,sat=1,m=1:0:0:0:0:0:1:0:0:0:0:0:1:0:0:0:0:0:1:0");
  world.defaults.setString("detailStyle",
                           "cc,r=2,sat=2,m=0.5:0:0:0:0:0:1:0:0:0:0:0:1:0:0:0:0:0:1:0");
  const auto& glass = [&world]() -> auto& {
    return *world.surface().effect->layers;
  };
  const auto red = [&] {
    return static_cast<double>(glass().find("backdrop")->filters().at(0).inputColorMatrix[0]);
  };
  world.detail->present(DetailWorld::module);
  world.surface().effect->layers = ScriptedEffectLayer::systemTree();
  world.surface().effect->moveToWindow(true);
  world.frames(2);
  EXPECT_EQ(red(), 1);
  world.frames(2);
  EXPECT_NEAR(red(), 1 - 0.5 * 0.3632568, 1e-6);
  world.frames(30);
  EXPECT_EQ(red(), 0.5);
  EXPECT_EQ(glass().find("backdrop")->values.at("filters.colorSaturate.inputAmount"), 2);
  EXPECT_EQ(glass().find("backdrop")->values.at("filters.gaussianBlur.inputRadius"), 2)
      << "no blur for each frame";
}

TEST(ControlCenterDetailTest, ItsWindowIsAboveControlCentersPanel) {
  struct Case {
    std::optional<int> layer;  // of Control Center's panel; none: it is closed
    int level;
  };
  for (const Case& each : std::vector<Case>{{std::nullopt, 101}, {26, 101}, {101, 102}}) {
    DetailWorld world;
    const auto showCenter = [&] {
      world.showControlCenter(each.layer.has_value(), each.layer.value_or(0));
    };
    showCenter();
    world.detail->build(DetailWorld::module);
    EXPECT_EQ(world.window()->level(), each.level);
    world.showControlCenter(false);
    world.presentOpen();
    world.detail->collapse();
    showCenter();
    world.pass(each.layer ? 0.1 : 0.65);
    EXPECT_EQ(world.window()->level(), each.level) << "it may be back at another one";
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
  EXPECT_NE(world.highlight()->stageSurface().layer, nullptr);
  world.detail->tearDown();
  world.hideIcon();
  world.presentOpen();
  EXPECT_EQ(world.highlight(), nullptr) << "nobody knows where the icon is";
}

TEST(ControlCenterDetailTest, AnOpenPanelFollowsItsContent) {
  DetailWorld world;
  world.presentOpen();
  world.content->resize(300.4);
  world.content->resize(0);
  EXPECT_EQ(world.detail->phase(), Phase::open) << "no change to speak of";

  const Rect high{906, 304, 308, 400};
  world.content->resize(400);
  EXPECT_EQ(world.detail->phase(), Phase::resizing);
  follow(world, DetailWorld::open, high, 15, 15,
         {{1, 0.2834687, 0, 1}, {3, 0.6321206, 0, 1}, {18, 0.9975212, 0, 1}});
  world.frames(1);
  EXPECT_EQ(world.detail->phase(), Phase::open);
  EXPECT_EQ(world.glass(), high);
  EXPECT_EQ(world.window()->frame(), high);
  EXPECT_EQ(world.main.pendingTimers(), 0);

  world.content->resize(500);
  world.frames(3);
  const double reached = world.glass().height;
  world.content->resize(200);
  world.frames(1);
  EXPECT_LT(world.glass().height, reached) << "it turns round where it is";
  EXPECT_EQ(world.window()->frame().height, reached) << "until it has shrunk";
  world.frames(30);
  EXPECT_EQ(world.glass(), (Rect{906, 504, 308, 200}));
  EXPECT_EQ(world.window()->frame(), world.glass()) << "it swallows no clicks below";
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
  EXPECT_NEAR(world.glass().height, 250, 1) << "it goes on to where it was going";
  EXPECT_EQ(world.window()->frame().height, 400);
  world.frames(30);
  EXPECT_EQ(world.glass(), (Rect{906, 304, 308, 400}));

  world.detail->dismiss();
  world.content->resize(500);
  EXPECT_EQ(world.detail->phase(), Phase::fading);
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
  world.detail->dismiss();
  EXPECT_EQ(world.windows.made(), 0);
  EXPECT_THAT(world.calls, Not(Contains("will present"))) << "the module must not hide for it";
}

}  // namespace
}  // namespace plemora
