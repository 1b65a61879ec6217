#include <cmath>
#include <fstream>
#include <iterator>
#include <utility>

#include "main/stage/scenario.h"
#include "main/stage/scenario_json.h"
#include "main/stage/scenario_values.h"

// The steps of a scenario.

namespace plemora {

namespace {

constexpr std::size_t mostSteps = 2000;
constexpr double longestWait = 86400;  // seconds
constexpr double defaultTimeout = 10;

StartStep readStart(const ScenarioPart& part) {
  if (part.isText()) {
    return {readProgram(part), std::nullopt};
  }
  part.allow({"program", "arguments"});
  StartStep step{readProgram(part.at("program")), std::nullopt};
  part.read("arguments", step.arguments, [&](const ScenarioPart& list) {
    if (step.program != scenarioProgram) {
      list.fail("only \"" + std::string(scenarioProgram) + "\" takes any");
    }
    return list.texts();
  });
  return step;
}

OpenStep readOpen(const ScenarioPart& part) {
  if (part.isText()) {
    const std::string name = part.text();
    const auto kind =
        name == scenarioControlCenter ? OpenStep::Kind::controlCenter : OpenStep::Kind::program;
    return {kind, name};
  }
  part.allow({"url"});
  const ScenarioPart url = part.at("url");
  if (url.text().find(':') == std::string::npos) {
    url.fail("must begin with a scheme, such as \"com.quorvane.mixer:\"");
  }
  return {OpenStep::Kind::url, url.text()};
}

ClickStep readClick(const ScenarioPart& part) {
  if (part.isText() || !part.find("on")) {
    return {readTarget(part), ClickStep::Button::left};
  }
  part.allow({"on", "button"});
  ClickStep step{readTarget(part.at("on")), ClickStep::Button::left};
  part.read("button", step.button, [](const ScenarioPart& button) {
    return button.oneOf<ClickStep::Button>({{"left", ClickStep::Button::left},
                                            {"right", ClickStep::Button::right},
                                            {"middle", ClickStep::Button::middle}});
  });
  return step;
}

DragStep readDrag(const ScenarioPart& part) {
  part.allow({"from", "to"});
  return {readTarget(part.at("from")), readPoint(part.at("to"))};
}

SlideStep readSlide(const ScenarioPart& part) {
  part.allow({"slider", "to"});
  return {part.at("slider").text(), part.at("to").number(0, 1)};
}

KeyStep readKey(const ScenarioPart& part) {
  const std::string key = part.text();
  for (const ScenarioKey& known : scenarioKeys) {
    if (known.name == key) {
      return {key};
    }
  }
  std::vector<std::string_view> names;
  for (const ScenarioKey& known : scenarioKeys) {
    names.push_back(known.name);
  }
  part.refuse(key, names);
}

ScrollStep readScroll(const ScenarioPart& part) {
  part.allow({"over", "notches"});
  return {readTarget(part.at("over")), part.at("notches").whole(-100, 100)};
}

WaitStep readWait(const ScenarioPart& part) {
  if (!part.json().is_object()) {
    return {part.number(0, longestWait), std::nullopt};
  }
  part.allow({"until", "timeout"});
  WaitStep step{defaultTimeout, readConditions(part.at("until"))};
  part.read("timeout", step.seconds,
            [](const ScenarioPart& timeout) { return timeout.number(0, longestWait); });
  return step;
}

FailStep readFail(const ScenarioPart& part) {
  using What = FailStep::What;
  const auto what = [](const ScenarioPart& text) {
    return text.oneOf<What>({{"nothing", What::nothing},
                             {"preferences read", What::preferenceRead},
                             {"preferences write", What::preferenceWrite},
                             {"preferences synchronize", What::preferenceSynchronize},
                             {"file read", What::fileRead},
                             {"file write", What::fileWrite},
                             {"file remove", What::fileRemove},
                             {"accessibility call", What::accessibilityCall}});
  };
  if (part.isText()) {
    return {what(part)};
  }
  FailStep step{what(part.at("what"))};
  if (step.what == What::accessibilityCall) {
    part.allow({"what", "times", "after", "kills", "of", "vanishes"});
  } else {
    part.allow({"what", "times", "after", "kills"});
  }
  part.read("times", step.times, [](const ScenarioPart& times) {
    return times.isText() ? times.oneOf<int>({{"always", -1}}) : times.whole(1, 1000);
  });
  const auto flag = [](const ScenarioPart& value) { return value.flag(); };
  part.read("kills", step.kills, flag);
  part.read("vanishes", step.vanishes, flag);
  part.read("of", step.of, [](const ScenarioPart& of) { return of.text(); });
  part.read("after", step.after, [](const ScenarioPart& after) { return after.whole(0, 1000); });
  return step;
}

// A name that a file can have.
std::string readPictureName(const ScenarioPart& part) {
  std::string name = part.text();
  for (const char c : name) {
    if (!(c >= 'a' && c <= 'z') && !(c >= '0' && c <= '9') && c != '-') {
      part.fail("must consist of small letters, digits and hyphens: a file is named after it");
    }
  }
  if (name.size() > 80) {
    part.fail("must have 80 letters at most");
  }
  return name;
}

struct Verb {
  std::string_view name;
  ScenarioAction (*read)(const ScenarioPart& part);
};

constexpr Verb verbs[] = {
    {"start", [](const ScenarioPart& part) -> ScenarioAction { return readStart(part); }},
    {"quit",
     [](const ScenarioPart& part) -> ScenarioAction { return QuitStep{readProgram(part)}; }},
    {"kill",
     [](const ScenarioPart& part) -> ScenarioAction { return KillStep{readProgram(part)}; }},
    {"open", [](const ScenarioPart& part) -> ScenarioAction { return readOpen(part); }},
    {"click", [](const ScenarioPart& part) -> ScenarioAction { return readClick(part); }},
    {"drag", [](const ScenarioPart& part) -> ScenarioAction { return readDrag(part); }},
    {"slide", [](const ScenarioPart& part) -> ScenarioAction { return readSlide(part); }},
    {"type", [](const ScenarioPart& part) -> ScenarioAction { return TypeStep{part.text()}; }},
    {"key", [](const ScenarioPart& part) -> ScenarioAction { return readKey(part); }},
    {"scroll", [](const ScenarioPart& part) -> ScenarioAction { return readScroll(part); }},
    {"wait", [](const ScenarioPart& part) -> ScenarioAction { return readWait(part); }},
    {"plug", [](const ScenarioPart& part) -> ScenarioAction { return PlugStep{readDevice(part)}; }},
    {"pull", [](const ScenarioPart& part) -> ScenarioAction { return PullStep{part.text()}; }},
    {"play", [](const ScenarioPart& part) -> ScenarioAction { return PlayStep{readPlayer(part)}; }},
    {"change",
     [](const ScenarioPart& part) -> ScenarioAction { return ChangeStep{readChange(part)}; }},
    {"fail", [](const ScenarioPart& part) -> ScenarioAction { return readFail(part); }},
    {"remember",
     [](const ScenarioPart& part) -> ScenarioAction { return RememberStep{part.text()}; }},
    {"expect",
     [](const ScenarioPart& part) -> ScenarioAction { return ExpectStep{readConditions(part)}; }},
    {"screenshot",
     [](const ScenarioPart& part) -> ScenarioAction {
       return ScreenshotStep{readPictureName(part)};
     }},
};

const Verb* findVerb(std::string_view name) {
  for (const Verb& verb : verbs) {
    if (verb.name == name) {
      return &verb;
    }
  }
  return nullptr;
}

[[noreturn]] void refuseVerb(const ScenarioPart& part, const std::string& problem) {
  std::vector<std::string_view> names;
  for (const Verb& verb : verbs) {
    names.push_back(verb.name);
  }
  part.fail(problem + "; a step says one of " + listOfNames(names));
}

ScenarioStep readStep(const ScenarioPart& part) {
  part.requireObject();
  ScenarioStep step;
  const Verb* chosen = nullptr;
  for (const auto& [name, value] : part.json().items()) {
    if (name == "note") {
      step.note = part.at("note").text();
      continue;
    }
    const Verb* verb = findVerb(name);
    if (verb == nullptr) {
      refuseVerb(part, "\"" + name.substr(0, 60) + "\" is nothing that a step can do");
    }
    if (chosen != nullptr) {
      part.fail("does two things, \"" + std::string(chosen->name) + "\" and \"" + name +
                "\"; make it two steps");
    }
    chosen = verb;
  }
  if (chosen == nullptr) {
    refuseVerb(part, "does nothing");
  }
  step.verb = std::string(chosen->name);
  const ScenarioPart value(part.json()[step.verb], part.where() + " (" + step.verb + ")");
  step.action = chosen->read(value);
  return step;
}

}  // namespace

Scenario parseScenario(std::string_view text, const std::string& file) {
  const auto json = parseScenarioJson(text, file);
  const ScenarioPart whole(json, file);
  whole.allow({"about", "stage", "steps"});
  Scenario scenario;
  scenario.file = file;
  whole.read("about", scenario.about, [](const ScenarioPart& about) { return about.text(); });
  if (const auto stage = whole.find("stage")) {
    scenario.stage = readStage(ScenarioPart(stage->json(), file + ": stage"));
  }
  const auto steps = whole.at("steps").items();
  if (steps.size() > mostSteps) {
    whole.at("steps").fail("may hold " + std::to_string(mostSteps) + " steps at most");
  }
  for (std::size_t i = 0; i < steps.size(); ++i) {
    const std::string where = file + ": step " + std::to_string(i + 1);
    scenario.steps.push_back(readStep(ScenarioPart(steps[i].json(), where)));
  }
  return scenario;
}

Scenario loadScenario(const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  std::string text{std::istreambuf_iterator<char>(stream), {}};
  if (!stream.good() && !stream.eof()) {
    throw ScenarioError(path + ": cannot be read");
  }
  return parseScenario(text, path);
}

}  // namespace plemora
