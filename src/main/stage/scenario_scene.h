#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "main/stage/program_on_stage.h"
#include "main/stage/scenario.h"
#include "main/stage/stage_control.h"
#include "main/stage/stage_world.h"

namespace plemora {

/// What a scenario plays on. Main thread; world and program outlive it.
struct ScenarioScene {
  StageWorld& world;
  ProgramOnStage& program;
  /// The controls in the program's windows, as assistive technology finds them.
  std::function<std::vector<StageControl>()> controls;
  /// What was remembered, by its name.
  std::map<std::string, std::string> remembered;
};

/// Where the target is on the screens, y up. Throws ScenarioError: it is not to be seen, and what
/// is to be seen instead.
Point locate(const ScenarioTarget& target, const ScenarioScene& scene);

/// The control of the program's windows that has that name; throws ScenarioError.
StageControl findControl(const std::string& name, const ScenarioScene& scene);

/// Why a condition does not hold; none: all of them hold.
std::optional<std::string> unmet(const ScenarioConditions& conditions, const ScenarioScene& scene);

/// The same for what concerns setup alone.
std::optional<std::string> unmetOfSetup(const ScenarioConditions& conditions,
                                        const ScenarioScene& scene);

/// What a tile of Control Center is called.
std::string nameOf(const StageTile& tile);

}  // namespace plemora
