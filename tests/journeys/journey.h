#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "journeys/overlay_watch.h"
#include "journeys/plain_panel.h"
#include "journeys/plain_setup.h"
#include "main/stage/program_on_stage.h"
#include "main/stage/scenario_runner.h"

namespace plemora {

/// Plays a scenario with everything but the drawing, on the virtual clock.
struct Journey {
  explicit Journey(const Scenario& scenario, StageStorage storage = StageStorage::inMemory())
      : world(scenario, std::move(storage)),
        program(world, {.windows = world.desktop.windows,
                        .makeContent =
                            [](PanelView& view, const ControlCenterLook&) {
                              return std::make_shared<PlainPanel>(view);
                            },
                        .makeOnboardingContents =
                            [](const ControlCenterLook&) { return plainOnboarding(); }}),
        runner(scenario, world, program,
               {.advance = [this](double seconds) { advance(seconds); },
                .controls = [this] { return PlainContent::controls(world.desktop); },
                .screenshot = [this](const std::string& name) { pictures.push_back(name); },
                .setWallpaper = [](const std::string& name) { return name != "nowhere"; }}) {}

  /// Frame by frame.
  void advance(double seconds) {
    constexpr double frame = 1.0 / 60;
    for (double left = seconds; left > 0; left -= frame) {
      world.desktop.advance(std::min(left, frame));
      overlay.look();
    }
  }

  StageWorld world;
  OverlayWatch overlay{world};
  ProgramOnStage program;
  std::vector<std::string> pictures;
  ScenarioRunner runner;
};

}  // namespace plemora
