#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "journeys/journey.h"

namespace plemora {
namespace {

/// Something that the program does, in which it is killed.
struct Act {
  std::string name;
  std::string stage;  ///< members of the scenario's stage
  std::string steps;
  double seconds = 0;  ///< that it lasts
};

const std::vector<Act>& acts() {
  static const std::string fresh = R"("defaults": {"didCompleteSetup": null})";
  static const std::string replaced =
      R"("layout": "replaced", "defaults": {"soundReplaced": true, "tilesRefreshedForBuild": "0"})";
  static const std::string undone =
      R"("layout": "fresh", "defaults": {"soundReplaced": true,
         "tilesRefreshedForBuild": "1-1790000000"})";
  static const std::vector<Act> all = {
      {"FirstStart", fresh, R"({"start": "Plemora"}, {"wait": 2})", 2},
      {"Setup", fresh,
       R"({"start": "Plemora"}, {"wait": 0.5},
          {"click": {"panel": "Replace: Replace Sound in Control Center"}}, {"wait": 9},
          {"click": {"panel": "Keep Apple's Sound Icon"}}, {"wait": 0.5},
          {"click": {"panel": "Done"}}, {"wait": 2})",
       12},
      {"StartAfterUpdate", replaced, R"({"start": "Plemora"}, {"wait": 10})", 10},
      {"StartThatRepairs", undone, R"({"start": "Plemora"}, {"wait": 10})", 10},
      {"Quit", replaced, R"({"start": "Plemora"}, {"wait": 5}, {"quit": "Plemora"}, {"wait": 2})",
       7},
  };
  return all;
}

struct KilledAnywhereTest : testing::TestWithParam<Act> {
  Scenario scenario(const std::string& first = {}) const {
    return parseScenario(R"({"about": "a", "stage": {)" + GetParam().stage + R"(}, "steps": [)" +
                             first + GetParam().steps + "]}",
                         GetParam().name);
  }

  /// At every so many of those calls, one life each; how many lives that took.
  int killAtEach(const std::string& call, int stride) const {
    constexpr int mostCalls = 1000;
    int kills = 0;
    for (; kills * stride <= mostCalls; ++kills) {
      const std::string after = std::to_string(kills * stride);
      SCOPED_TRACE(call + " " + after);
      Journey journey(scenario(R"({"fail": {"what": ")" + call + R"(", "after": )" + after +
                               R"(, "kills": true}}, )"));
      journey.runner.run();
      if (journey.program.isRunning() || journey.program.exitStatus()) {
        break;  // it came to its end before that
      }
      expectRecovery(journey);
      if (HasFailure()) {
        break;
      }
    }
    return kills;
  }

  static void expect(Journey& journey, const std::string& conditions) {
    const Scenario expected =
        parseScenario(R"({"about": "a", "steps": [{"expect": )" + conditions + "}]}", "afterwards");
    ScenarioRunner runner(expected, journey.world, journey.program);
    EXPECT_TRUE(runner.run()) << runner.problem();
  }

  /// Skips the last step; if Sound is still there, that is kept too.
  static void finishSetup(Journey& journey) {
    for (const char* name : {"Keep Apple's Sound Icon", "Done", "Finish Later"}) {
      for (const StageControl& control : PlainContent::controls(journey.world.desktop)) {
        if (control.name == name) {
          journey.world.desktop.click({control.frame.midX(), control.frame.midY()});
          break;
        }
      }
      journey.advance(1);
    }
    journey.advance(12);
  }

  /// The next start makes all right, and its end leaves the system's Sound where it was.
  static void expectRecovery(Journey& journey) {
    journey.world.faults.clear();
    journey.advance(3);
    expect(journey, R"({"control center": {"understands layout": true}})");
    if (!journey.program.isRunning()) {
      journey.program.start();
    }
    journey.advance(12);
    if (!journey.world.defaults.boolean("didCompleteSetup").value_or(false)) {
      expect(journey, R"({"setup": "open"})");
      finishSetup(journey);
    }
    const bool isReplaced = journey.world.defaults.boolean("soundReplaced").value_or(false);
    expect(journey,
           isReplaced
               ? R"({"control center": {"tiles": ["Plemora", "Plemora"], "lacks": ["Sound"]}})"
               : R"({"control center": {"tiles": ["Sound"], "lacks": ["Plemora"]}})");
    expect(journey, R"({"setup": "closed"})");
    journey.program.quit();
    journey.advance(4);
    expect(journey, R"({"running": {"Plemora": false},
                        "control center": {"tiles": ["Sound"], "lacks": ["Plemora"]}})");
  }
};

TEST_P(KilledAnywhereTest, AtEveryCallOfAStoreTheNextStartIsRight) {
  int kills = 0;
  for (const char* call : {"preferences read", "preferences write", "preferences synchronize",
                           "file read", "file write", "file remove"}) {
    kills += killAtEach(call, 1);
  }
  EXPECT_GT(kills, 0);
}

TEST_P(KilledAnywhereTest, AtCallsOfAccessibilityTheNextStartIsRight) {
  killAtEach("accessibility call", 23);
}

TEST_P(KilledAnywhereTest, AtAnyTimeTheNextStartIsRight) {
  for (double time = 0.05; time < GetParam().seconds; time += 0.31) {
    SCOPED_TRACE(time);
    Journey journey(scenario());
    const double end = journey.world.desktop.clock.mediaTime() + time;
    for (double left = time; left > 0;) {
      const auto pause = journey.runner.proceed();
      journey.advance(std::min(pause.value_or(left), left));
      left = end - journey.world.desktop.clock.mediaTime();
    }
    journey.program.kill();
    expectRecovery(journey);
    ASSERT_FALSE(HasFailure());
  }
}

INSTANTIATE_TEST_SUITE_P(Acts, KilledAnywhereTest, testing::ValuesIn(acts()),
                         [](const auto& act) { return act.param.name; });

}  // namespace
}  // namespace plemora
