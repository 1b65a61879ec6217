#pragma once

#include <memory>
#include <string>
#include <vector>

#include "journeys/plain_panel.h"
#include "main/stage/program_on_stage.h"
#include "main/stage/scenario_runner.h"

namespace plemora {

/// Plays a scenario with everything but the drawing, on the virtual clock.
struct Journey {
  explicit Journey(const Scenario& scenario)
      : world(scenario),
        program(world, {world.desktop.windows,
                        [](PanelView& view, const ControlCenterLook&) {
                          return std::make_shared<PlainPanel>(view);
                        }}),
        runner(scenario, world, program,
               {.controls = [this] { return PlainPanel::controls(world.desktop); },
                .screenshot = [this](const std::string& name) { pictures.push_back(name); },
                .setWallpaper = [](const std::string& name) { return name != "nowhere"; }}) {}

  StageWorld world;
  ProgramOnStage program;
  std::vector<std::string> pictures;
  ScenarioRunner runner;
};

}  // namespace plemora
