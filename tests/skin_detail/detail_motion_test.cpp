#include "skin/detail_motion.h"

#include <gmock/gmock.h>

#include <vector>

#include "skin/detail_placement.h"

namespace plemora {
namespace {

TEST(DetailMotionTest, TheContentsFadeAtTheirOwnTimesEachWay) {
  struct Case {
    double progress;
    double module;
    double detail;
  };
  for (const Case& each : std::vector<Case>{
           {0, 1, 0},
           {0.02, 0.75, 0},
           {0.04, 0.5, 0.2},
           {0.08, 0, 0.6},
           {0.12, 0, 1},
           {1, 0, 1},
           {-0.0, 0, 1},
           {-0.02, 0, 0.75},
           {-0.03, 0, 0.625},
           {-0.08, 0.5, 0},
           {-0.13, 1, 0},
           {-1, 1, 0},
       }) {
    EXPECT_NEAR(DetailMotion::moduleAlpha(each.progress), each.module, 1e-9) << each.progress;
    EXPECT_NEAR(DetailMotion::detailAlpha(each.progress), each.detail, 1e-9) << each.progress;
  }
}

TEST(DetailPlacementTest, ThePanelGrowsAwayFromTheEdgeOfItsScreen) {
  const Screen main{1, {0, 0, 1440, 900}, {0, 70, 1440, 806}};
  const Screen left{2, {-1000, 200, 1000, 600}, {-1000, 200, 1000, 580}};
  struct Case {
    const char* what;
    Rect module;
    const Screen* screen;
    double height;
    Rect panel;
  };
  for (const Case& each : std::vector<Case>{
           {"right of the middle", {1066, 640, 148, 64}, &main, 300, {906, 404, 308, 300}},
           {"left of it", {100, 640, 148, 64}, &main, 300, {100, 404, 308, 300}},
           {"in the very middle", {646, 640, 148, 64}, &main, 300, {646, 404, 308, 300}},
           {"wider than the panel", {1080, 640, 320, 64}, &main, 300, {1092, 404, 308, 300}},
           {"at the right edge", {1290, 640, 148, 64}, &main, 300, {1124, 404, 308, 300}},
           {"beyond the left edge", {-20, 640, 148, 64}, &main, 300, {8, 404, 308, 300}},
           {"below the menu bar", {1066, 810, 148, 64}, &main, 300, {906, 568, 308, 300}},
           {"low", {1066, 200, 148, 64}, &main, 300, {906, 78, 308, 300}},
           {"just not too low", {1066, 314, 148, 64}, &main, 300, {906, 78, 308, 300}},
           {"higher than the screen", {1066, 640, 148, 64}, &main, 2000, {906, 78, 308, 790}},
           {"another screen", {-300, 600, 148, 64}, &left, 300, {-460, 364, 308, 300}},
           {"no screen", {1066, 640, 148, 64}, nullptr, 2000, {1066, -1296, 308, 2000}},
       }) {
    EXPECT_EQ(DetailPlacement::panelFrame(each.module, each.screen, each.height), each.panel)
        << each.what;
  }
  EXPECT_EQ(DetailPlacement::room(&main), 790);
  EXPECT_EQ(DetailPlacement::room(nullptr), 0);
}

TEST(DetailPlacementTest, ItsTopStaysAsLongAsThereIsRoomBelow) {
  const Screen screen{1, {0, 0, 1440, 900}, {0, 70, 1440, 806}};
  const Rect panel{906, 404, 308, 300};
  EXPECT_EQ(DetailPlacement::resized(panel, &screen, 500), (Rect{906, 204, 308, 500}));
  EXPECT_EQ(DetailPlacement::resized(panel, &screen, 120), (Rect{906, 584, 308, 120}));
  EXPECT_EQ(DetailPlacement::resized(panel, &screen, 700), (Rect{906, 78, 308, 700}));
  EXPECT_EQ(DetailPlacement::resized(panel, &screen, 5000), (Rect{906, 78, 308, 790}));
  EXPECT_EQ(DetailPlacement::resized(panel, nullptr, 5000), (Rect{906, -4296, 308, 5000}));
}

}  // namespace
}  // namespace plemora
