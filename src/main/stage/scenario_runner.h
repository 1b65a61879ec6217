#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "main/stage/scenario_scene.h"

namespace plemora {

/// What a runner needs of whoever shows the stage. Each may be empty.
struct ScenarioHooks {
  /// Lets all that waits run while time stands still; without it, the desktop's.
  std::function<void()> settle;
  /// Lets that many seconds pass; without it, the desktop's.
  std::function<void(double)> advance;
  /// See ScenarioScene; without it the program's windows have no controls.
  std::function<std::vector<StageControl>()> controls;
  /// Takes a picture of the stage as it is now. Whatever it throws ends the scenario.
  std::function<void(const std::string& name)> screenshot;
  /// False: there is no wallpaper of that name.
  std::function<bool(const std::string& name)> setWallpaper;
  /// Told of each step before it is done.
  std::function<void(std::size_t number, const ScenarioStep& step)> began;
};

/// Plays a scenario on a stage that was set for it, to its end or to the first step that cannot be
/// done or whose conditions do not hold. It never lets time pass by itself, but in run(). Main
/// thread, outside of all queues; world and program outlive it.
class ScenarioRunner {
 public:
  ScenarioRunner(Scenario scenario, StageWorld& world, ProgramOnStage& program,
                 ScenarioHooks hooks = {});

  /// Does all that is due by now. How many seconds may pass before the next call, above 0; none at
  /// the end.
  std::optional<double> proceed();
  /// Plays to the end, letting time pass as needed. Whether all went as it should.
  bool run();

  bool isFinished() const { return isFinished_; }
  /// File, step and what went wrong; empty: nothing.
  const std::string& problem() const { return problem_; }
  /// How many steps have begun.
  std::size_t begun() const { return next_; }

 private:
  /// Part of a step that takes its time.
  struct Beat {
    double pause = 0;  ///< seconds before it
    std::function<void()> act;
  };
  struct Perform;

  void perform(const ScenarioStep& step);
  std::optional<double> pollUntil();
  void drag(const Point& from, const Point& to);
  void setWallpaper(const std::string& name);
  void pass(double seconds);
  void settle();
  void fail(const std::string& reason);
  double now() { return scene_.world.desktop.clock.mediaTime(); }

  const Scenario scenario_;
  ScenarioScene scene_;
  const ScenarioHooks hooks_;
  std::size_t next_ = 0;  // step
  std::deque<Beat> beats_;
  double due_ = 0;  // media time before which nothing is done
  std::optional<ScenarioConditions> until_;
  double untilEnd_ = 0;  // media time
  bool isFinished_ = false;
  std::string problem_;
};

}  // namespace plemora
