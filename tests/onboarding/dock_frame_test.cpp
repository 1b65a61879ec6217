#include <gtest/gtest.h>

#include <vector>

#include "onboarding/dock_placement.h"
#include "onboarding/guide_world.h"

namespace plemora {
namespace {

using Placement = HelperState::Placement;

constexpr double height = 160;

const Screen wide{1, {0, 0, 1440, 900}, {0, 0, 1440, 876}, 1, 60};
const Screen withDock{1, {0, 0, 1440, 900}, {0, 80, 1440, 796}, 1, 60};
const Screen second{2, {1440, 0, 1000, 800}, {1440, 0, 1000, 776}, 1, 60};

TEST(DockFrame, StandsUnderTheContentOfTheWindowElseBesideItElseOverIt) {
  struct Case {
    const char* what;
    Rect settings;
    std::vector<Screen> screens;
    Placement placement;
    Point origin;
  };
  const std::vector<Case> cases = {
      {"in the middle", {300, 300, 715, 520}, {wide}, Placement::under, {537.9, 128}},
      {"sidebar at its widest", {300, 300, 1000, 520}, {wide}, Placement::under, {686, 128}},
      {"just room below", {300, 176, 715, 520}, {wide}, Placement::under, {537.9, 4}},
      {"just none below", {100, 175.5, 715, 520}, {wide}, Placement::right, {827, 215.5}},
      {"just room on the right", {241, 50, 715, 520}, {wide}, Placement::right, {964, 90}},
      {"none on the right", {725, 50, 715, 520}, {wide}, Placement::left, {245, 90}},
      {"just room on the left, kept in", {484, 50, 715, 520}, {wide}, Placement::left, {8, 90}},
      {"no room at all", {300, 50, 900, 520}, {wide}, Placement::under, {636, 8}},
      {"raised by the Dock", {100, 20, 715, 520}, {withDock}, Placement::right, {827, 88}},
      {"half off the right edge", {1000, 300, 715, 520}, {wide}, Placement::under, {964, 128}},
      {"half off the left edge", {-600, 300, 715, 520}, {wide}, Placement::under, {8, 128}},
      {"second screen", {1500, 300, 715, 520}, {wide, second}, Placement::under, {1737.9, 128}},
      {"on both", {1300, 300, 715, 520}, {wide, second}, Placement::under, {964, 128}},
      {"on none", {5000, 300, 715, 520}, {wide, second}, Placement::under, {964, 128}},
      {"no screen", {0, 0, 715, 520}, {}, Placement::under, {237.9, -172}},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.what);
    const DockPlacement found = DockPlacement::under(each.settings, height, each.screens);
    EXPECT_EQ(found.placement, each.placement);
    expectNear(found.frame, {each.origin.x, each.origin.y, 468, height});
  }
}

TEST(DockFrame, StandsBesideControlCenterBelowTheMenuBar) {
  struct Case {
    const char* what;
    Rect panel;
    Screen screen;
    Point origin;
  };
  const std::vector<Case> cases = {
      {"left of it", {1050, 300, 340, 600}, wide, {570, 708}},
      {"right of it", {100, 300, 340, 600}, wide, {452, 708}},
      {"no room on either side", {300, 300, 500, 500}, second, {1448, 608}},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.what);
    expectNear(DockPlacement::besideControlCenter(each.panel, height, {each.screen}),
               {each.origin.x, each.origin.y, 468, height});
  }
}

}  // namespace
}  // namespace plemora
