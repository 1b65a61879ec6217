#include <gtest/gtest.h>

#include <chrono>

#include "adapters/linux/windows/screen_space.h"
#include "adapters/linux/windows/x11_work_area.h"
#include "windows/test_panel.h"

namespace plemora {

namespace {

// A screen of two pixels per point above a dock on its right neighbour of one: the toolkit leaves
// the second screen's origin in pixels.
const ScreenSpace mixed({{QRectF(0, 0, 1440, 900), 2}, {QRectF(2880, 0, 1920, 1080), 1}});

TEST(ScreenSpace, TurnsGlobalPointsIntoPixelsAndBack) {
  struct Case {
    Rect global;
    QRect device;
  };
  const Case cases[] = {
      {{0, 0, 1440, 900}, {0, 0, 2880, 1800}},            // all of the first
      {{100, 850, 20, 40}, {200, 20, 40, 80}},            // near its top
      {{2880, -180, 1920, 1080}, {2880, 0, 1920, 1080}},  // the second one reaches lower
      {{2900, 800, 10, 10}, {2900, 90, 10, 10}},
      {{10.25, 0, 10, 10}, {20, 1780, 21, 20}},  // outwards to whole pixels
  };
  for (const auto& [global, device] : cases) {
    SCOPED_TRACE(testing::Message() << global.x << " " << global.y);
    EXPECT_EQ(mixed.toDevice(global), device);
    if (global.x == static_cast<int>(global.x)) {
      EXPECT_EQ(mixed.fromDevice(device.topLeft()), (Point{global.minX(), global.maxY()}));
    }
    EXPECT_EQ(mixed.toGlobal(mixed.toToolkit(global)), global);
  }
  EXPECT_EQ(mixed.scaleAt({0, 0, 10, 10}), 2);
  EXPECT_EQ(mixed.scaleAt({3000, 0, 10, 10}), 1);
  EXPECT_EQ(ScreenSpace({}).toDevice({1, -3, 2, 2}), QRect(1, 1, 2, 2));
}

TEST(ScreenSpace, RoundsEveryEdgeByItself) {
  // A top edge that stays must not tremble while the height grows.
  for (double height = 100; height < 102; height += 0.1) {
    EXPECT_EQ(mixed.toWholePoints({10, 800 - height, 308, height}).top(), 100);
  }
  EXPECT_EQ(mixed.toWholePoints({10, 10, 0, 0}).size(), QSize(1, 1));
}

TEST(WorkArea, TakesAwayWhatDocksReserveOnTheirScreen) {
  using Edge = X11WorkArea::Strut::Edge;
  constexpr QRect left(0, 0, 1000, 700);
  constexpr QRect right(1000, 0, 1920, 1080);
  constexpr QSize desktop(2920, 1080);
  struct Case {
    std::vector<X11WorkArea::Strut> struts;
    QRect onLeft;
    QRect onRight;
  };
  const Case cases[] = {
      {{}, left, right},
      {{{Edge::top, 30, 0, 999}}, {0, 30, 1000, 670}, right},
      // The left screen ends 380 above the bottom of the desktop.
      {{{Edge::bottom, 410, 0, 999}}, {0, 0, 1000, 670}, right},
      {{{Edge::bottom, 40, 1000, 2919}}, left, {1000, 0, 1920, 1040}},
      {{{Edge::right, 60, 0, 1079}}, left, {1000, 0, 1860, 1080}},
      {{{Edge::left, 50, 0, 699}}, {50, 0, 950, 700}, right},
      {{{Edge::top, 20, 0, 0x7fff}, {Edge::top, 30, 1000, 2919}},
       {0, 20, 1000, 680},
       {1000, 30, 1920, 1050}},
      {{{Edge::top, 9000, 0, 2919}}, left, right},  // nonsense
  };
  for (const Case& example : cases) {
    EXPECT_EQ(X11WorkArea::usable(left, desktop, example.struts), example.onLeft);
    EXPECT_EQ(X11WorkArea::usable(right, desktop, example.struts), example.onRight);
  }
}

TEST(LinuxScreens, FollowTheDisplay) {
  TestDesktop world(DisplaySetup{"Managed", true});
  auto& screens = world.desktop.screens();
  ASSERT_EQ(screens.screens().get().size(), 1U);
  const Screen before = screens.screens().get()[0];
  EXPECT_EQ(before.frame, (Rect{0, 0, 1000, 700}));
  EXPECT_EQ(before.visibleFrame, before.frame);
  EXPECT_EQ(before.scale, 1);
  EXPECT_GE(before.refreshRate, 20);
  int changes = 0;
  const auto subscription = screens.observe([&](const auto&) { ++changes; });

  // A dock at the bottom, 40 high.
  const auto dock = world.display.makeWindow({0, 660, 1000, 40}, 0x222222, true);
  world.display.reserve(dock, {0, 0, 0, 40, 0, 0, 0, 0, 0, 0, 0, 999});
  EXPECT_TRUE(waitUntil([&] {
    return screens.screens().get()[0].visibleFrame == Rect{0, 40, 1000, 660};
  }));
  world.display.destroy(dock);
  EXPECT_TRUE(waitUntil([&] { return screens.screens().get()[0].visibleFrame == before.frame; }));

  world.display.setScreenSize({800, 600});
  EXPECT_TRUE(waitUntil([&] { return screens.screens().get()[0].frame == Rect{0, 0, 800, 600}; }));
  EXPECT_EQ(screens.screens().get()[0].id, before.id);
  EXPECT_GE(changes, 3);
  // The panel's place counts from the new bottom.
  const auto panel = world.makePanel({10, 100, 308, 200});
  panel->order(WindowOrder::front);
  EXPECT_TRUE(waitUntil(
      [&] { return world.display.frameOf(TestDesktop::idOf()) == QRect(10, 300, 308, 200); }));
}

TEST(DisplayLinks, TickAtTheRateOfTheScreenWhileTheyAreHeld) {
  TestDesktop world(DisplaySetup{"Bare"});
  const double rate = world.desktop.screens().screens().get()[0].refreshRate;
  int ticks = 0;
  std::unique_ptr<DisplayLink> link;
  const auto start = std::chrono::steady_clock::now();
  link = world.desktop.displayLinks().makeLink(4711, [&] {
    if (++ticks == 20) {
      link.reset();
    }
  });
  ASSERT_TRUE(waitUntil([&] { return ticks == 20; }));
  const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
  // Never faster than the screen: nineteen frames lie between the first tick, which comes soon, and
  // the last.
  EXPECT_GE(elapsed.count(), 19.0 / rate);
  settle();
  EXPECT_EQ(ticks, 20);
}

}  // namespace

}  // namespace plemora
