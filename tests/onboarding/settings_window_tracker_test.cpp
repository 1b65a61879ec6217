#include "onboarding/settings_window_tracker.h"

#include <gmock/gmock.h>

#include <cmath>

#include "onboarding/guide_world.h"

namespace plemora {
namespace {

using testing::ElementsAre;
using testing::Eq;

constexpr Rect middle{300, 200, 715, 520};  // y up on a screen 900 high, as y down would be 180

WindowInfo window(std::int32_t pid, const Rect& bounds, int layer = 0, double alpha = 1) {
  return {.number = 1, .ownerPid = pid, .layer = layer, .bounds = bounds, .alpha = alpha};
}

TEST(SettingsWindowTracker, PicksTheFrontmostOrdinaryWindow) {
  constexpr std::int32_t pid = GuideWorld::settingsPid;
  const WindowInfo ordinary = window(pid, {300, 180, 715, 520});
  struct Case {
    const char* what;
    std::vector<WindowInfo> windows;
    std::optional<Rect> frame;
  };
  const std::vector<Case> cases = {
      {"behind others", {window(1, {0, 0, 1440, 900}), ordinary}, middle},
      {"under a sheet", {window(pid, {340, 240, 600, 400}), ordinary}, middle},
      {"under a menu", {window(pid, {200, 100, 900, 700}, 101), ordinary}, middle},
      {"two", {ordinary, window(pid, {0, 0, 800, 600})}, middle},
      {"too small", {window(pid, {0, 0, 479, 299})}, std::nullopt},
      {"not to be seen", {window(pid, {300, 180, 715, 520}, 0, 0)}, std::nullopt},
      {"no number", {window(pid, {0, 0, NAN, 520})}, std::nullopt},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.what);
    GuideWorld world;
    world.showSettings(middle);
    world.windowList.windows = each.windows;
    const SettingsWindowTracker tracker(world.onboarding);
    EXPECT_EQ(tracker.currentFrame(), each.frame);
    world.workspace.quit(pid);
    EXPECT_EQ(tracker.currentFrame(), std::nullopt);
    world.showSettings(middle);
    world.screens.set({});
    EXPECT_EQ(tracker.currentFrame(), std::nullopt);
  }
}

TEST(SettingsWindowTracker, ReportsWhatHasChangedUntilItIsStopped) {
  GuideWorld world;
  SettingsWindowTracker tracker(world.onboarding);
  std::vector<std::optional<Rect>> reports;
  tracker.onChange = [&](const auto& frame) { reports.push_back(frame); };
  tracker.start();
  world.pass(0.1);
  EXPECT_TRUE(reports.empty());
  world.showSettings(middle);
  world.pass(0.1);
  world.showSettings(middle.offset(5, 0));
  world.pass(GuideWorld::frameTime + 1e-9);
  world.closeSettings();
  world.pass(0.1);
  EXPECT_THAT(reports, ElementsAre(Eq(middle), Eq(middle.offset(5, 0)), Eq(std::nullopt)));

  // Started anew, it reports anew.
  world.showSettings(middle);
  world.pass(0.1);
  tracker.start();
  world.pass(0.1);
  EXPECT_EQ(reports.size(), 5u);
  tracker.onChange = [&](const auto&) { tracker.stop(); };
  world.closeSettings();
  world.pass(0.1);
  EXPECT_EQ(world.leftovers(), "");
}

TEST(SettingsWindowTracker, TellsTheLogThreeTimesWhatItFinds) {
  GuideWorld world;
  SettingsWindowTracker tracker(world.onboarding);
  tracker.start();
  world.showSettings(middle);
  std::vector<std::size_t> lines;
  for (const double pause : {0.49, 0.02, 0.98, 0.02, 1.48, 0.02, 5.0}) {
    world.pass(pause);
    lines.push_back(world.log.messages(LogLevel::info).size());
  }
  EXPECT_THAT(lines, ElementsAre(0, 1, 1, 2, 2, 3, 3));
  EXPECT_EQ(world.log.records.back().category, "tracker");
  EXPECT_EQ(world.log.records.back().message, "System Settings: (300, 200, 715, 520)");
}

}  // namespace
}  // namespace plemora
