#include "menubar/panel_placement.h"

#include <gtest/gtest.h>

#include <vector>

namespace plemora {
namespace {

const Screen bigScreen{1, {0, 0, 1440, 900}, {0, 60, 1440, 816}, 1, 60};

TEST(PanelPlacement, KeepsInsideTheVisibleFrame) {
  struct Case {
    const char* what;
    Rect anchor;
    double height;
    Rect expected;
    bool stands;
  };
  const Case cases[] = {
      {"below the middle of the anchor", {700, 876, 24, 24}, 400, {558, 470, 308, 400}, false},
      {"at the right edge", {1410, 876, 24, 24}, 400, {1124, 470, 308, 400}, false},
      {"at the left edge", {0, 876, 24, 24}, 400, {8, 470, 308, 400}, false},
      {"more than there is room for", {700, 876, 24, 24}, 5000, {558, 68, 308, 802}, false},
      {"a bar at the bottom", {700, 10, 24, 24}, 400, {558, 40, 308, 400}, true},
      {"a bar at the bottom, too high", {700, 10, 24, 24}, 5000, {558, 40, 308, 828}, true},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.what);
    const auto placement = PanelPlacement::place(each.anchor, &bigScreen, each.height);
    EXPECT_EQ(placement.frame, each.expected);
    EXPECT_EQ(placement.standsOnAnchor, each.stands);
  }
}

TEST(PanelPlacement, KeepsToTheLeftEdgeOfAScreenThatIsNotTheFirst) {
  const Screen left{2, {-800, 0, 800, 600}, {-800, 0, 800, 576}, 1, 60};
  EXPECT_EQ(PanelPlacement::place({-795, 576, 24, 24}, &left, 200).frame,
            (Rect{-792, 370, 308, 200}));
  // One that is too narrow for both margins keeps the right one.
  const Screen narrow{3, {0, 0, 310, 600}, {0, 0, 310, 600}, 1, 60};
  EXPECT_EQ(PanelPlacement::place({100, 576, 24, 24}, &narrow, 200).frame.x, -6);
}

TEST(PanelPlacement, WithoutAScreenNothingHoldsItBack) {
  const auto placement = PanelPlacement::place({0, 500, 24, 24}, nullptr, 5000);
  EXPECT_EQ(placement.frame, (Rect{-142, -4506, 308, 5000}));
  EXPECT_FALSE(placement.standsOnAnchor);
}

TEST(PanelPlacement, ChoosesTheFirstScreenThatTheAnchorTouches) {
  const Screen second{2, {1440, 0, 1000, 800}, {1440, 0, 1000, 800}, 1, 60};
  const std::vector<Screen> screens{bigScreen, second};
  struct Case {
    const char* what;
    Rect anchor;
    int expected;
  };
  const Case cases[] = {
      {"on the second", {1500, 776, 24, 24}, 2},
      {"across both", {1430, 776, 24, 24}, 1},
      {"on neither: the main one", {5000, 776, 24, 24}, 1},
      {"nowhere: the main one", {}, 1},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.what);
    const Screen* screen = PanelPlacement::screen(screens, each.anchor);
    ASSERT_NE(screen, nullptr);
    EXPECT_EQ(screen->id, each.expected);
  }
  EXPECT_EQ(PanelPlacement::screen({}, {0, 0, 24, 24}), nullptr);
}

}  // namespace
}  // namespace plemora
