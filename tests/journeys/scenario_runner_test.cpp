#include "main/stage/scenario_runner.h"

#include <gmock/gmock.h>

#include <string>

#include "journeys/journey.h"

namespace plemora {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

Scenario scenarioOf(const std::string& steps) {
  return parseScenario(R"({"stage": {"players": ["Music"]}, "steps": [)" + steps + "]}", "a.json");
}

TEST(ScenarioRunnerTest, SaysWhichStepFailedAndWhatIsSoInstead) {
  struct Case {
    std::string steps;
    std::string problem;
  };
  const std::string start = R"({"start": "Plemora"}, {"click": "status item"}, {"wait": 0.5}, )";
  const std::string open = R"({"open": "Control Center"}, )";
  const Case cases[] = {
      {R"({"click": "status item"})",
       "a.json: step 1 (click): the program has no item in the menu bar"},
      {R"({"wait": 1}, {"click": "edit button"})",
       "a.json: step 2 (click): Control Center is closed"},
      {open + R"({"click": {"tile": "Soundd"}})",
       "step 2 (click): the tile \"Soundd\" is not to be seen; there is \"WiFi\", "},
      {open + R"({"click": {"tile": "Sound", "index": 1}})",
       "the tile number 2 of \"Sound\" is not to be seen"},
      {open + R"({"click": {"remove": "Sound"}})", "Control Center is not being edited"},
      {open + open + R"({"wait": 1})", "step 2 (open): Control Center is open already"},
      {R"({"click": {"menu": "Quit"}})", "no menu is open"},
      {start + R"({"click": {"panel": "Mute Nobody"}})",
       "the control \"Mute Nobody\" is not to be seen; there is \"Volume\", \"Mute Music\""},
      {start + R"({"slide": {"slider": "Mute Music", "to": 1}})", "\"Mute Music\" is no slider"},
      {R"({"click": {"settings": "Plemora"}})", "System Settings is not open"},
      {R"({"click": {"prompt": "Allow"}})", "nobody asks for consent"},
      {R"({"quit": "Plemora"})", "step 1 (quit): the program does not run"},
      {start + R"({"start": "Plemora"})", "step 4 (start): the program runs already"},
      {R"({"kill": "Radio"})", "\"Radio\" does not run"},
      {R"({"pull": "gone"})", "there is no device \"gone\""},
      {R"({"open": {"url": "gopher://x"}})", "nothing opens \"gopher://x\""},
      {R"({"change": {"wallpaper": "nowhere"}})", "there is no wallpaper \"nowhere\""},

      {R"({"expect": {"panel": "open"}})", "step 1 (expect): that the panel is open is false"},
      {R"({"expect": {"panel": {"shows": ["Music"]}}})", "the panel is closed"},
      {start + R"({"expect": {"panel": {"under": "Control Center item"}}})", "the panel hangs at"},
      {start + R"({"expect": {"panel": {"lacks": ["Music"]}}})", "the panel shows \"Music\""},
      {R"({"expect": {"control center": {"tiles": ["Sound", "Sound"]}}})",
       "does not show the tile \"Sound\" as it is expected, but \"WiFi at 0, 0 (rect2x1)\""},
      {R"({"expect": {"control center": {"tiles": [{"name": "Sound", "column": 1}]}}})",
       "does not show the tile \"Sound\""},
      {R"({"expect": {"control center": {"tiles": [{"name": "Sound", "size": "rect2x1"}]}}})",
       "does not show the tile \"Sound\""},
      {R"({"expect": {"control center": {"lacks": ["Sound"]}}})", "Control Center shows \"Sound\""},
      {R"({"expect": {"control center": {"launches": 2}}})", "is 1, not 2"},
      {R"({"expect": {"defaults": {"a": "b"}}})", "the setting \"a\" is absent, not \"b\""},
      {R"({"change": {"defaults": {"a": "b"}}}, {"expect": {"defaults": {"a": null}}})",
       "the setting \"a\" is \"b\", not absent"},
      {R"({"expect": {"preferences": {"as": "x"}}})", "nothing was remembered as \"x\""},
      {R"({"remember": "x"}, {"expect": {"preferences": {"not as": "x"}}})",
       "still those of \"x\""},
      {R"({"remember": "x"}, {"change": {"layout": "missing"}},
          {"expect": {"preferences": {"as": "x"}}})",
       "are not those of \"x\""},
      {R"({"expect": {"backup": true}})", "that there is a backup is false, not true"},
      {R"({"expect": {"devices": ["A"]}})", "the devices are \"Built-in Speakers\", not \"A\""},
      {R"({"expect": {"default device": {"volume": 0.5}}})", "its volume is 0.600000"},
      {R"({"expect": {"levels": {"Music": {"volume": 1}}}})", "the program does not run"},
      {start + R"({"expect": {"levels": {"Music": {"volume": 0.5}}}})",
       "the volume of \"Music\" is 1.000000, not 0.500000"},
      {R"({"expect": {"menu": "open"}})", "that a menu is open is false"},
      {R"({"expect": {"settings pane": "Sound"}})", "the pane of System Settings is \"\""},
      {R"({"expect": {"dock": []}})", "the icons of the Dock are \"Music\", not nothing"},
      {R"({"expect": {"printed": "ok"}})", "what the program has printed is \"\", not \"ok\""},
      {R"({"expect": {"reloads": 1}})", "the number of reloads of the controls is 0, not 1"},
      {R"({"expect": {"running": {"Music": false}}})", "that Music runs is true, not false"},
      {R"({"wait": {"until": {"panel": "open"}, "timeout": 2}})",
       "step 1 (wait): even after all that time that the panel is open is false"},
  };
  for (const Case& each : cases) {
    Journey journey(scenarioOf(each.steps));
    EXPECT_FALSE(journey.runner.run()) << each.steps;
    EXPECT_THAT(journey.runner.problem(), HasSubstr(each.problem)) << each.steps;
  }
}

TEST(ScenarioRunnerTest, LetsTimePassOnlyAsItIsTold) {
  Journey journey(scenarioOf(R"({"screenshot": "a"}, {"wait": 2}, {"screenshot": "b"})"));
  const double start = journey.world.desktop.clock.mediaTime();
  EXPECT_DOUBLE_EQ(*journey.runner.proceed(), 2);
  EXPECT_THAT(journey.pictures, ElementsAre("a"));
  journey.world.desktop.advance(1.5);
  EXPECT_NEAR(*journey.runner.proceed(), 0.5, 1e-6);
  journey.world.desktop.advance(0.5);
  EXPECT_EQ(journey.runner.proceed(), std::nullopt);
  EXPECT_THAT(journey.pictures, ElementsAre("a", "b"));
  EXPECT_TRUE(journey.runner.isFinished());
  EXPECT_EQ(journey.runner.problem(), "");
  EXPECT_NEAR(journey.world.desktop.clock.mediaTime() - start, 2, 1e-6);
}

TEST(ScenarioRunnerTest, WaitsNoLongerThanItMust) {
  Journey journey(scenarioOf(
      R"({"start": {"program": "Plemora", "arguments": ["--open"]}},
         {"wait": {"until": {"panel": "open"}, "timeout": 5}})"));
  const double start = journey.world.desktop.clock.mediaTime();
  EXPECT_TRUE(journey.runner.run()) << journey.runner.problem();
  EXPECT_NEAR(journey.world.desktop.clock.mediaTime() - start, 0.3, 0.05);
}

}  // namespace
}  // namespace plemora
