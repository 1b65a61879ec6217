#include <gmock/gmock.h>

#include <string>
#include <variant>

#include "main/stage/scenario.h"

namespace plemora {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

std::string problemOf(const std::string& text) {
  try {
    parseScenario(text, "a.json");
    return "none";
  } catch (const ScenarioError& error) {
    return error.what();
  }
}

TEST(ScenarioParserTest, ReadsWhatTheFileSays) {
  const Scenario scenario = parseScenario(R"({
    "about": "All kinds of steps.",
    "stage": {
      "screens": [{"width": 1280, "height": 720, "scale": 1}],
      "appearance": "light", "trusted": false, "consent": "undecided", "layout": "no sound",
      "devices": [{"uid": "desk", "name": "Desk", "transport": "usb", "volume": null}],
      "players": ["Music", {"name": "Radio", "loudness": 0.25}],
      "defaults": {"soundReplaced": true, "gone": null, "appRowStyle": "lines"},
      "arguments": ["--open"]
    },
    "steps": [
      {"start": {"program": "Plemora", "arguments": []}, "note": "Without the usual arguments."},
      {"click": {"on": "status item", "button": "right"}},
      {"click": {"tile": "Plemora", "index": 1}},
      {"drag": {"from": {"point": [3, 4]}, "to": [5, 6]}},
      {"wait": {"until": {"panel": {"is": "open", "under": "Control Center item"}}, "timeout": 2}},
      {"fail": {"what": "preferences write", "times": "always", "after": 2}},
      {"expect": {"control center": {"tiles": [{"name": "Sound", "column": 0, "row": 2}]},
                  "preferences": {"as": "before"}, "printed": ""}}
    ]
  })",
                                          "a.json");
  EXPECT_EQ(scenario.about, "All kinds of steps.");
  const ScenarioWorld& stage = scenario.stage;
  EXPECT_EQ(stage.screens->at(0).width, 1280);
  EXPECT_EQ(stage.isDark, false);
  EXPECT_EQ(stage.isTrusted, false);
  EXPECT_EQ(stage.consent, ScenarioConsent::undecided);
  EXPECT_EQ(stage.layout, ScenarioLayout::noSound);
  EXPECT_EQ(stage.devices->at(0).transport, "usb");
  EXPECT_EQ(stage.devices->at(0).volume, std::nullopt);
  EXPECT_EQ(stage.players->at(0).name, "Music");
  EXPECT_EQ(stage.players->at(1).loudness, 0.25);
  EXPECT_EQ(stage.defaults.at("soundReplaced"), ScenarioSetting(true));
  EXPECT_EQ(stage.defaults.at("gone"), ScenarioSetting());
  EXPECT_EQ(stage.defaults.at("appRowStyle"), ScenarioSetting(std::string("lines")));
  EXPECT_THAT(stage.arguments, ElementsAre("--open"));

  ASSERT_EQ(scenario.steps.size(), 7u);
  EXPECT_EQ(scenario.steps[0].note, "Without the usual arguments.");
  EXPECT_TRUE(std::get<StartStep>(scenario.steps[0].action).arguments->empty());
  EXPECT_EQ(std::get<ClickStep>(scenario.steps[1].action).button, ClickStep::Button::right);
  EXPECT_EQ(std::get<ClickStep>(scenario.steps[2].action).target.index, 1);
  EXPECT_EQ(std::get<DragStep>(scenario.steps[3].action).to, (Point{5, 6}));
  const auto& wait = std::get<WaitStep>(scenario.steps[4].action);
  EXPECT_EQ(wait.seconds, 2);
  EXPECT_EQ(wait.until->panel->under, PanelCondition::Under::controlCenter);
  const auto& fail = std::get<FailStep>(scenario.steps[5].action);
  EXPECT_EQ(fail.what, FailStep::What::preferenceWrite);
  EXPECT_EQ(fail.times, -1);
  EXPECT_EQ(fail.after, 2);
  const auto& expect = std::get<ExpectStep>(scenario.steps[6].action).conditions;
  EXPECT_EQ(expect.controlCenter->tiles.at(0).row, 2);
  EXPECT_EQ(expect.preferencesAs, "before");
  EXPECT_EQ(expect.printed, "");
}

TEST(ScenarioParserTest, NamesFileStepMistakeAndWhatIsAllowed) {
  struct Case {
    std::string text;
    std::string problem;
  };
  const auto step = [](const std::string& text) {
    return R"({"steps": [{"wait": 1}, )" + text + "]}";
  };
  const auto stage = [](const std::string& text) {
    return R"({"stage": )" + text + R"(, "steps": []})";
  };
  const Case cases[] = {
      {"{\n  \"steps\": [,]\n}", "a.json: is no JSON at line 2, column 13: "},
      {"", "a.json: is no JSON at line 1, column 1"},
      {"[]", "a.json: must be an object, not a list"},
      {"{}", "a.json: \"steps\" is missing"},
      {R"({"steps": [], "stepps": []})",
       "a.json: \"stepps\" is not known here; it may be \"about\", \"stage\" or \"steps\""},
      {R"({"steps": 3})", "a.json, \"steps\": must be a list, not a number"},
      {R"({"steps": [{"wait": 1, "wait": 2}]})", "a.json: \"wait\" is given twice in one object"},
      {step(R"("wait")"), "a.json: step 2: must be an object, not a text"},
      {step("{}"), "a.json: step 2: does nothing; a step says one of \"start\", \"quit\""},
      {step(R"({"klick": "desktop"})"),
       "a.json: step 2: \"klick\" is nothing that a step can do; a step says one of \"start\""},
      {step(R"({"wait": 1, "key": "tab"})"),
       "a.json: step 2: does two things, \"wait\" and \"key\"; make it two steps"},
      {step(R"({"wait": -1})"), "a.json: step 2 (wait): must be from 0 to 86400"},
      {step(R"({"wait": "1"})"), "a.json: step 2 (wait): must be a number, not a text"},
      {step(R"({"wait": {"timeout": 1}})"), "a.json: step 2 (wait): \"until\" is missing"},
      {step(R"({"click": "tile"})"),
       "a.json: step 2 (click): \"tile\" is not known here; it may be \"status item\""},
      {step(R"({"click": {"tile": "A", "menu": "B"}})"),
       "a.json: step 2 (click): must name one thing to aim at, not 2"},
      {step(R"({"click": {"menu": "B", "index": 1}})"),
       "a.json: step 2 (click), \"index\": belongs to a \"tile\" alone"},
      {step(R"({"click": {"point": [1]}})"),
       "a.json: step 2 (click), \"point\": must hold two numbers, x and y"},
      {step(R"({"click": {"on": "desktop", "button": "third"}})"),
       "a.json: step 2 (click), \"button\": \"third\" is not known here"},
      {step(R"({"slide": {"slider": "Volume", "to": 2}})"),
       "a.json: step 2 (slide), \"to\": must be from 0 to 1"},
      {step(R"({"scroll": {"over": "status item", "notches": 1.5}})"),
       "a.json: step 2 (scroll), \"notches\": must be a whole number"},
      {step(R"({"key": "enter"})"), "it may be \"escape\", \"return\""},
      {step(R"({"open": {"url": "panel"}})"), "a.json: step 2 (open), \"url\": must begin with"},
      {step(R"({"start": {"program": "Music", "arguments": []}})"),
       "a.json: step 2 (start), \"arguments\": only \"Plemora\" takes any"},
      {step(R"({"fail": {"what": "file read", "of": "AXRole"}})"), "\"of\" is not known here"},
      {step(R"({"fail": "everything"})"), "it may be \"nothing\", \"preferences read\""},
      {step(R"({"change": {}})"), "a.json: step 2 (change): changes nothing"},
      {step(R"({"change": {"devices": []}})"), "step 2 (change): \"devices\" is not known here"},
      {step(R"({"expect": {}})"), "a.json: step 2 (expect): expects nothing"},
      {step(R"({"expect": {"panel": "shut"}})"), "it may be \"open\" or \"closed\""},
      {step(R"({"expect": {"control center": {"tiles": [{"name": "A", "size": "rect3x1"}]}}})"),
       "a.json: step 2 (expect), \"control center\", \"tiles\", item 1, \"size\": \"rect3x1\""},
      {step(R"({"screenshot": "../x"})"), "step 2 (screenshot): must consist of small letters"},
      {stage(R"({"consent": "maybe"})"), "a.json: stage, \"consent\": \"maybe\" is not known here"},
      {stage(R"({"players": ["A", "A"]})"),
       "a.json: stage, \"players\", item 2: there is another one called \"A\""},
      {stage(R"({"players": ["Plemora"]})"), "\"Plemora\" is no name for a player"},
      {stage(R"({"defaults": {"a": 1}})"), "a.json: stage, \"defaults\", \"a\": must be true"},
      {stage(R"({"screens": [{"width": 10}]})"), "\"width\": must be from 320 to 20000"},
  };
  for (const Case& each : cases) {
    EXPECT_THAT(problemOf(each.text), HasSubstr(each.problem)) << each.text;
  }
  EXPECT_THAT(problemOf(step(R"({"wait": 1, "note": ""})")),
              StartsWith("a.json: step 2, \"note\""));
  EXPECT_EQ(problemOf(step(R"({"wait": 0})")), "none");
}

TEST(ScenarioParserTest, SaysThatAFileCannotBeRead) {
  EXPECT_THROW(loadScenario("/nowhere/a.json"), ScenarioError);
}

}  // namespace
}  // namespace plemora
