#include <gmock/gmock.h>

#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "app/app_world.h"

// What the program is asked for from outside: launch arguments, URLs, presses of its tile.

namespace plemora {
namespace {

using testing::Contains;
using testing::EndsWith;
using testing::Not;

using Arguments = std::vector<std::string>;

TEST(AppArgumentsTest, OpenShowsThePanelAMomentLater) {
  AppWorld world;
  world.launch({"--open"});
  world.pass(0.29);
  EXPECT_EQ(world.panelX(), std::nullopt);
  world.pass(0.02);
  EXPECT_EQ(world.panelX(), AppWorld::belowItem);
}

TEST(AppArgumentsTest, OnlyWholeArgumentsCount) {
  AppWorld world;
  world.launch({"--opens", "-open", "open", "--open=1", "--replace-sound=1", "--prime-control",
                "--Replace-Sound", ""});
  world.pass(20);
  EXPECT_EQ(world.panelX(), std::nullopt);
  EXPECT_THAT(world.events.lines, Not(Contains(testing::HasSubstr("print"))));
  EXPECT_EQ(world.tiles(), 0U);
}

TEST(AppArgumentsTest, ScriptModePrintsOneLineAndEndsWithSuccessEitherWay) {
  struct Case {
    Arguments arguments;
    bool isReplacedBefore;
    std::string printed;
    bool isReplacedAfter;
  };
  for (const Case& each : std::vector<Case>{
           {{"--replace-sound"}, false, "ok", true},
           {{"--restore-sound"}, true, "ok", false},
           {{"--replace-sound"},
            true,
            "failed: Apple's Sound module isn't in Control Center.",
            true},
           {{"--restore-sound"}, false, "failed: Control Center's layout couldn't be read.", false},
           // Which of two holds does not depend on their order.
           {{"--restore-sound", "--replace-sound"}, false, "ok", true},
           {{"--replace-sound", "--restore-sound"}, false, "ok", true},
           {{"--open", "--restore-sound"}, true, "ok", false},
           {{"--prime-controls", "--replace-sound"}, false, "ok", true},
           {{"--setup", "--test-helper", "--replace-sound"}, false, "ok", true},
       }) {
    AppWorld world;
    if (each.isReplacedBefore) {
      world.layout.replaceSound();
      world.center.launch();
      world.center.appear();
    }
    world.defaults.setString("tilesRefreshedForBuild", "1-1790000000");
    world.launch(each.arguments);
    const std::string what = testing::PrintToString(each.arguments);
    ASSERT_GE(world.events.lines.size(), 2U) << what;
    EXPECT_EQ(world.events.lines.end()[-2], "0.00 print " + each.printed) << what;
    EXPECT_EQ(world.events.lines.end()[-1], "0.00 exit 0") << what;
    EXPECT_EQ(world.tiles(), each.isReplacedAfter ? 2U : 0U) << what;
    EXPECT_EQ(world.hasSound(), !each.isReplacedAfter) << what;
    EXPECT_EQ(world.defaults.boolean("soundReplaced"),
              each.printed == "ok" ? std::optional(each.isReplacedAfter) : std::nullopt)
        << what;
    EXPECT_THAT(world.events.lines, Contains("0.00 tile signal")) << what;
    world.pass(20);
    EXPECT_EQ(world.panelX(), std::nullopt) << what;
    EXPECT_EQ(world.events.lines.back(), "0.00 exit 0") << what << ": nothing comes after it";
  }
}

TEST(AppArgumentsTest, PrimingIsToldWhenItIsOverAndNothingWaitsForIt) {
  struct Case {
    const char* what;
    bool isTrusted;
    bool isRunning;
    bool hasItem;
    const char* printedAt;
    bool isPrimed;
  };
  for (const Case& each : std::vector<Case>{
           {"without trust", false, true, true, "0.00 print primed", false},
           {"without Control Center", true, false, false, "0.00 print primed", false},
           {"without its item", true, true, false, "6.00 print primed", false},
           {"all there", true, true, true, "2.60 print primed", true},
       }) {
    AppWorld world;
    world.center.quit();
    if (each.isRunning) {
      world.center.launch();
    }
    if (each.hasItem) {
      world.center.appear();
    }
    world.accessibility.setTrusted(each.isTrusted);
    world.launch({"--prime-controls", "--open"});
    world.pass(0.4);
    EXPECT_EQ(world.panelX(), AppWorld::belowItem) << each.what << ": start-up went on";
    world.pass(20);
    EXPECT_EQ(world.events.lines.back(), each.printedAt) << each.what;
    EXPECT_EQ(world.defaults.string("controlsPrimedForSystem").has_value(), each.isPrimed)
        << each.what;
  }
}

TEST(AppArgumentsTest, PrimingWaitsForTheControlCenterThatStartUpHasRestarted) {
  AppWorld world;
  world.storeLayout(2, false);
  world.defaults.setBoolean("soundReplaced", true);
  world.defaults.setBoolean("didCompleteSetup", false);  // or start-up primes by itself, too
  world.launch({"--prime-controls"});
  ASSERT_THAT(world.events.lines, Contains("0.00 restart"));
  world.pass(1);
  world.center.launch();
  world.center.appear();
  world.pass(20);
  EXPECT_THAT(world.events.lines.back(), EndsWith("print primed"));
  EXPECT_TRUE(world.defaults.string("controlsPrimedForSystem").has_value());
}

TEST(AppURLTest, APanelURLOpensThePanelWhereItComesFrom) {
  const std::string panel = "com.quorvane.mixer://panel";
  const std::string fromCenter = "com.quorvane.mixer://panel?from=control-center";
  struct Case {
    Arguments urls;
    std::optional<double> x;
  };
  for (const Case& each : std::vector<Case>{
           {{}, std::nullopt},
           {{"com.quorvane.mixer://settings?from=control-center"}, std::nullopt},
           {{panel}, AppWorld::belowItem},
           {{fromCenter}, AppWorld::belowCenter},
           {{"com.quorvane.mixer://settings?from=control-center", panel}, AppWorld::belowCenter},
       }) {
    AppWorld world;
    world.launch();
    world.delegate->applicationOpen(each.urls);
    world.pass(0.11);
    EXPECT_EQ(world.panelX(), std::nullopt);
    world.pass(0.02);
    EXPECT_EQ(world.panelX(), each.x) << testing::PrintToString(each.urls);
  }
}

TEST(AppURLTest, WhatComesBeforeStartUpIsIgnored) {
  AppWorld world;
  world.make().applicationOpen({"com.quorvane.mixer://panel"});
  world.delegate->applicationDidFinishLaunching();
  world.pass(20);
  EXPECT_EQ(world.panelX(), std::nullopt);
}

TEST(AppTileTest, APressOpensThePanelBelowControlCentersIcon) {
  AppWorld world;
  world.launch();
  std::thread([&] { world.notifications.post("com.quorvane.mixer.tile-pressed"); }).join();
  world.pass(0.11);
  EXPECT_EQ(world.panelX(), std::nullopt);
  world.pass(0.02);
  EXPECT_EQ(world.panelX(), AppWorld::belowCenter);
}

TEST(AppTileTest, WithoutAnIconOfControlCenterThePanelHangsFromItsOwn) {
  AppWorld world;
  world.center.quit();
  world.launch();
  world.notifications.post("com.quorvane.mixer.tile-pressed");
  world.pass(0.2);
  EXPECT_EQ(world.panelX(), AppWorld::belowItem);
}

TEST(AppLifeTest, NothingIsLeftOnceItIsGone) {
  AppWorld world;
  world.setUp();
  world.launch({"--open", "--prime-controls"});
  world.delegate->applicationOpen({"com.quorvane.mixer://panel"});
  world.notifications.post("com.quorvane.mixer.tile-pressed");
  const auto before = world.events.lines;
  world.delegate.reset();
  world.settle();
  EXPECT_EQ(world.main.pendingTimers(), 0);
  world.notifications.post("com.quorvane.mixer.tile-pressed");
  world.pass(20);
  EXPECT_EQ(world.events.lines, before);
}

}  // namespace
}  // namespace plemora
