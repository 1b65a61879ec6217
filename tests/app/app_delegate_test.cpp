#include "app/app_delegate.h"

#include <gmock/gmock.h>

#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "app/app_world.h"

namespace plemora {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::Not;

using Lines = std::vector<std::string>;

constexpr const char* ownStamp = "1-1790000000";

Lines after(const Lines& lines, const std::string& start) {
  const auto found = std::ranges::find(lines, start);
  return found == lines.end() ? lines : Lines(found + 1, lines.end());
}

TEST(AppDelegateTest, TheFirstStartGoesStepByStep) {
  AppWorld world;
  world.launch();
  EXPECT_THAT(world.events.lines,
              ElementsAre("0.00 main menu", "0.00 model", "0.00 status item", "0.00 skin",
                          "0.00 updater", "0.00 login item", "0.00 reload", "0.00 tile signal"));
  EXPECT_NE(world.delegate->model(), nullptr);
  EXPECT_NE(world.delegate->statusItem(), nullptr);
  EXPECT_NE(world.delegate->skin(), nullptr);
  EXPECT_NE(world.delegate->detail(), nullptr);
  EXPECT_EQ(world.panelX(), std::nullopt);
  world.pass(20);
  EXPECT_EQ(world.events.lines.size(), 8U);
  EXPECT_EQ(world.main.pendingTimers(), 1) << "the skin looks for Control Center";
}

TEST(AppDelegateTest, ALaterStartKeepsTheReplacementAndDoesTheRestInOrder) {
  AppWorld world;
  world.setUp();
  world.defaults.setBoolean("didRegisterLoginItem", true);
  world.launch({"--open", "--prime-controls"});
  world.center.launch();
  world.center.appear();
  world.pass(0.2);
  EXPECT_THAT(after(world.events.lines, "0.00 updater"),
              ElementsAre("0.00 read layout", "0.00 restart", "0.00 tile signal", "0.05 press item",
                          "0.10 press edit", "0.15 press edit"));
}

TEST(AppDelegateTest, ABrokenReplacementIsPutInPlaceAgain) {
  struct Case {
    bool isReplaced;  // by the settings
    int tiles;
    bool hasSound;
    bool isTriedAgain;
    bool isMended;
  };
  for (const Case& each : std::vector<Case>{
           {false, 0, true, false, false},
           {false, 1, false, false, false},
           {true, 2, false, false, false},
           {true, 3, false, false, false},
           {true, 0, true, true, true},
           {true, 2, true, true, true},
           {true, 1, true, true, true},
           {true, 1, false, true, false},  // there is no Sound to replace
           {true, 0, false, true, false},
       }) {
    AppWorld world;
    world.storeLayout(each.tiles, each.hasSound);
    world.defaults.setBoolean("soundReplaced", each.isReplaced);
    world.defaults.setString("tilesRefreshedForBuild", ownStamp);
    int reads = 0;
    world.preferences.gate = [&reads](const std::string& call) {
      reads += call == "value boxes" ? 1 : 0;
      return true;
    };
    world.launch();
    const std::string what = std::to_string(each.isReplaced) + std::to_string(each.tiles) +
                             std::to_string(each.hasSound);
    EXPECT_EQ(reads == 0, !each.isReplaced) << what;
    EXPECT_EQ(reads > 1, each.isTriedAgain) << what;
    if (each.isMended) {
      EXPECT_EQ(world.tiles(), 2U) << what;
      EXPECT_FALSE(world.hasSound()) << what;
    }
    EXPECT_EQ(world.workspace.runningApplications().empty(), each.isMended) << what;
    EXPECT_EQ(world.reload.reloads, each.isMended ? 0 : 1) << what;
    world.pass(1.99);
    EXPECT_EQ(world.reload.reloads, each.isMended ? 0 : 1) << what;
    world.pass(0.02);
    EXPECT_EQ(world.reload.reloads, 1) << what;
  }
}

TEST(AppDelegateTest, AMendedReplacementCountsAsRefreshedForThisBuild) {
  AppWorld world;
  world.defaults.setBoolean("soundReplaced", true);
  world.defaults.setString("tilesRefreshedForBuild", "0.9-1");
  world.launch();
  EXPECT_EQ(world.defaults.string("tilesRefreshedForBuild"), ownStamp);
  EXPECT_THAT(after(world.events.lines, "0.00 login item"),
              ElementsAre("0.00 read layout", "0.00 restart", "0.00 tile signal"))
      << "Control Center is restarted once";
}

TEST(AppDelegateTest, AnUnreadableLayoutIsPassedOverInSilence) {
  AppWorld world;
  world.storeLayout(2, false);
  world.isLayoutUnreadable = true;
  world.defaults.setBoolean("soundReplaced", true);
  world.defaults.setString("tilesRefreshedForBuild", ownStamp);
  world.launch();
  EXPECT_THAT(after(world.events.lines, "0.00 login item"),
              ElementsAre("0.00 read layout", "0.00 reload", "0.00 tile signal"));
  EXPECT_EQ(world.defaults.boolean("soundReplaced"), true);
  EXPECT_EQ(world.log.messages(LogLevel::error).size(), 0U);
}

TEST(AppDelegateTest, AnUpdateOfTheProgramRefreshesItsTilesOnce) {
  struct Case {
    std::optional<std::string> stampBefore;
    bool isControlAdded;
    bool restarts;
  };
  for (const Case& each : std::vector<Case>{
           {ownStamp, true, false},
           {"1-1789999999", true, true},
           {"0-1790000000", true, true},
           {"1", true, true},
           {std::nullopt, true, true},
           {"1-1789999999", false, false},
           {std::nullopt, false, false},
       }) {
    AppWorld world;
    // Not the program's doing, so the layout is nobody's to mend.
    world.storeLayout(each.isControlAdded ? 2 : 0, true);
    if (each.stampBefore) {
      world.defaults.setString("tilesRefreshedForBuild", *each.stampBefore);
    }
    world.launch();
    const std::string what = each.stampBefore.value_or("none");
    EXPECT_EQ(world.defaults.string("tilesRefreshedForBuild"), ownStamp) << what;
    EXPECT_EQ(world.workspace.runningApplications().empty(), each.restarts) << what;
    EXPECT_EQ(world.reload.reloads, each.restarts ? 0 : 1) << what;
    world.pass(1.99);
    EXPECT_EQ(world.reload.reloads, each.restarts ? 0 : 1) << what;
    world.pass(0.02);
    EXPECT_EQ(world.reload.reloads, 1) << what;

    world.center.launch();
    world.launch();
    EXPECT_EQ(world.workspace.runningApplications().size(), 1U) << what << ", the next start";
    EXPECT_EQ(world.reload.reloads, 2) << what;
  }
}

TEST(AppDelegateTest, TheStampTellsBuildsApart) {
  struct Case {
    std::optional<std::string> build;
    std::optional<double> date;
    std::string stamp;
  };
  for (const Case& each : std::vector<Case>{
           {"12.3", 1'790'000'000.99, "12.3-1790000000"},
           {"12.3", 1'790'000'001.0, "12.3-1790000001"},
           {"12.3", std::nullopt, "12.3"},
           {std::nullopt, 5.0, "0-5"},
           {std::nullopt, std::nullopt, "0"},
           {"", 0.0, "-0"},
           {"1", -1.9, "1--1"},
           {"1", 1e30, "1"},
           {"1", std::numeric_limits<double>::quiet_NaN(), "1"},
       }) {
    AppWorld world;
    world.system.build = each.build;
    world.system.executableDate = each.date;
    world.launch();
    EXPECT_EQ(world.defaults.string("tilesRefreshedForBuild"), each.stamp);
  }
}

TEST(AppDelegateTest, AnUpdateOfTheSystemPrimesTheControlsFourSecondsLater) {
  const std::string version = "Version 26.4 (Build 25E246)";
  struct Case {
    bool isSetUp;
    bool isReplaced;
    std::optional<std::string> primedFor;
    bool isTrusted;
    bool primes;
  };
  for (const Case& each : std::vector<Case>{
           {true, true, std::nullopt, true, true},
           {true, true, "Version 26.3 (Build 25D125)", true, true},
           {true, true, version, true, false},
           {true, true, std::nullopt, false, false},
           {false, true, std::nullopt, true, false},
           {true, false, std::nullopt, true, false},
           {false, false, std::nullopt, true, false},
       }) {
    AppWorld world;
    if (each.isSetUp) {
      world.storeLayout(2, false);  // of which setup would take care itself
    }
    world.defaults.setBoolean("didCompleteSetup", each.isSetUp);
    world.defaults.setBoolean("soundReplaced", each.isReplaced);
    world.defaults.setString("tilesRefreshedForBuild", ownStamp);
    if (each.primedFor) {
      world.defaults.setString("controlsPrimedForSystem", *each.primedFor);
    }
    world.accessibility.setTrusted(each.isTrusted);
    world.launch();
    world.accessibility.setTrusted(true);
    const std::string what = std::to_string(each.isSetUp) + std::to_string(each.isReplaced) +
                             each.primedFor.value_or("-") + std::to_string(each.isTrusted);
    world.pass(3.99);
    EXPECT_THAT(world.events.lines, Not(Contains(EndsWith("press item")))) << what;
    world.pass(0.02);
    EXPECT_EQ(std::ranges::count(world.events.lines, "4.00 press item"), each.primes) << what;
    EXPECT_EQ(world.defaults.string("controlsPrimedForSystem"), each.primedFor) << what;
    world.pass(20);
    EXPECT_EQ(world.defaults.string("controlsPrimedForSystem"),
              each.primes ? std::optional(version) : each.primedFor)
        << what;
    EXPECT_FALSE(world.center.isOpen || world.center.isEditing) << what;
  }
}

TEST(AppDelegateTest, PrimingThatFailedIsTriedAgainAtTheNextStart) {
  AppWorld world;
  world.setUp();
  world.defaults.setString("tilesRefreshedForBuild", ownStamp);
  world.center.editDelay = 100;
  world.launch();
  world.pass(20);
  EXPECT_EQ(world.defaults.string("controlsPrimedForSystem"), std::nullopt);
  EXPECT_THAT(world.events.lines, Contains("4.05 press edit"));
  world.center.editDelay = 0;
  world.launch();
  world.pass(20);
  EXPECT_NE(world.defaults.string("controlsPrimedForSystem"), std::nullopt);
}

TEST(AppDelegateTest, QuittingPutsSoundBackAndTheNextStartReplacesItAgain) {
  AppWorld world;
  world.layout.replaceSound();
  world.defaults.setBoolean("soundReplaced", true);
  for (int start = 0; start < 3; ++start) {
    world.center.launch();
    world.launch();
    EXPECT_EQ(world.tiles(), 2U) << start;
    EXPECT_FALSE(world.hasSound()) << start;

    world.center.launch();
    world.events.lines.clear();
    world.delegate->applicationWillTerminate();
    EXPECT_EQ(world.tiles(), 0U) << start;
    EXPECT_TRUE(world.hasSound()) << start;
    EXPECT_THAT(world.events.lines.back(), EndsWith("restart"));
    EXPECT_EQ(world.defaults.boolean("soundReplaced"), true);
  }
}

TEST(AppDelegateTest, QuittingLeavesALayoutAloneThatIsNotTheProgramsDoing) {
  AppWorld world;
  world.layout.replaceSound();
  world.center.launch();
  world.make().applicationWillTerminate();
  world.launch();
  world.events.lines.clear();
  world.delegate->applicationWillTerminate();
  EXPECT_EQ(world.tiles(), 2U);
  EXPECT_THAT(world.events.lines, Not(Contains(testing::HasSubstr("restart"))));

  world.defaults.setBoolean("soundReplaced", true);
  world.make().applicationWillTerminate();
  EXPECT_EQ(world.tiles(), 2U) << "start-up never ran";
  world.launch();
  world.isLayoutUnreadable = true;
  world.delegate->applicationWillTerminate();
  EXPECT_EQ(world.tiles(), 2U) << "and a failure is nobody's concern";
}

TEST(AppDelegateTest, TheMenuOffersToPutSoundBackAndDoesSo) {
  AppWorld world;
  world.launch();
  const auto titles = [&] {
    world.bar.click(StatusButtonEvent::rightMouseDown);
    return menuTitles(world.bar.menus.back());
  };
  constexpr const char* entry = "Put Apple's Sound Back in Control Center";
  EXPECT_THAT(titles(), Not(Contains(entry)));
  for (const int tiles : {1, 2}) {
    for (const bool hasSound : {false, true}) {
      world.storeLayout(tiles, hasSound);
      EXPECT_EQ(std::ranges::count(titles(), entry), tiles == 2 && !hasSound ? 1 : 0);
    }
  }
  world.storeLayout(2, false);
  world.isLayoutUnreadable = true;
  EXPECT_THAT(titles(), Not(Contains(entry)));
  world.isLayoutUnreadable = false;
  world.defaults.setBoolean("soundReplaced", true);
  ASSERT_THAT(titles(), Contains(entry));
  for (const MenuItem& item : world.bar.menus.back()) {
    if (item.title == entry) {
      item.action();
    }
  }
  EXPECT_EQ(world.defaults.boolean("soundReplaced"), false);
  EXPECT_TRUE(world.hasSound());
  EXPECT_EQ(world.tiles(), 0U);
  EXPECT_EQ(world.events.lines.back(), "0.00 restart");
}

}  // namespace
}  // namespace plemora
