#pragma once

#include <string>
#include <string_view>

#include "main/stage/scenario.h"
#include "main/stage/scenario_json.h"

// The nouns of a scenario file, each read from its place there. All throw ScenarioError.

namespace plemora {

struct ScenarioKey {
  std::string_view name;
  int code;  ///< virtual key code (Carbon's kVK_...)
};

inline constexpr ScenarioKey scenarioKeys[] = {
    {"escape", 53}, {"return", 36}, {"tab", 48},   {"space", 49},
    {"left", 123},  {"right", 124}, {"down", 125}, {"up", 126},
};

ScenarioSetting readSetting(const ScenarioPart& part);
std::string readProgram(const ScenarioPart& part);
Point readPoint(const ScenarioPart& part);
ScenarioTarget readTarget(const ScenarioPart& part);
ScenarioDevice readDevice(const ScenarioPart& part);
ScenarioPlayer readPlayer(const ScenarioPart& part);
/// What the stage holds when the curtain rises.
ScenarioWorld readStage(const ScenarioPart& part);
/// What changes about it later.
ScenarioWorld readChange(const ScenarioPart& part);
ScenarioConditions readConditions(const ScenarioPart& part);

}  // namespace plemora
