#include "main/stage/scenario_runner.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "main/stage/scenario_values.h"

namespace plemora {

namespace {

constexpr double pollInterval = 1.0 / 60;  // seconds
constexpr double timeSlack = 1e-9;         // what sums of seconds may be off
constexpr int dragMoves = 12;              // one each pollInterval
constexpr int scrollPoints = 10;           // of a notch

}  // namespace

ScenarioRunner::ScenarioRunner(Scenario scenario, StageWorld& world, ProgramOnStage& program,
                               ScenarioHooks hooks)
    : scenario_(std::move(scenario)),
      scene_{world, program, hooks.controls, {}},
      hooks_(std::move(hooks)) {
  if (scenario_.stage.wallpaper) {
    try {
      setWallpaper(*scenario_.stage.wallpaper);
    } catch (const ScenarioError& error) {
      isFinished_ = true;
      problem_ = scenario_.file + ": stage: " + error.what();
    }
  }
}

void ScenarioRunner::settle() {
  if (hooks_.settle) {
    hooks_.settle();
  } else {
    scene_.world.desktop.settle();
  }
}

void ScenarioRunner::pass(double seconds) {
  scene_.program.guard([&] {
    if (hooks_.advance) {
      hooks_.advance(seconds);
    } else {
      scene_.world.desktop.advance(seconds);
    }
  });
}

void ScenarioRunner::fail(const std::string& reason) {
  const ScenarioStep& step = scenario_.steps[next_ - 1];
  problem_ = scenario_.file + ": step " + std::to_string(next_) + " (" + step.verb + "): " + reason;
  isFinished_ = true;
}

std::optional<double> ScenarioRunner::pollUntil() {
  const auto reason = unmet(*until_, scene_);
  if (!reason) {
    until_.reset();
    return 0;
  }
  if (now() >= untilEnd_ - timeSlack) {
    fail("even after all that time " + *reason);
    return std::nullopt;
  }
  due_ = std::min(now() + pollInterval, untilEnd_);
  return due_ - now();
}

std::optional<double> ScenarioRunner::proceed() {
  try {
    while (!isFinished_) {
      if (now() < due_ - timeSlack) {
        return due_ - now();
      }
      if (until_) {
        const auto pause = pollUntil();
        if (pause && *pause > 0) {
          return pause;
        }
      } else if (!beats_.empty()) {
        const Beat beat = std::move(beats_.front());
        beats_.pop_front();
        scene_.program.guard(beat.act);
        settle();
        due_ = now() + (beats_.empty() ? 0 : beats_.front().pause);
      } else if (next_ == scenario_.steps.size()) {
        isFinished_ = true;
      } else {
        const ScenarioStep& step = scenario_.steps[next_++];
        if (hooks_.began) {
          hooks_.began(next_, step);
        }
        scene_.program.guard([&] { perform(step); });
        scene_.program.guard([this] { settle(); });
      }
    }
  } catch (const std::exception& error) {
    fail(error.what());
  }
  return std::nullopt;
}

bool ScenarioRunner::run() {
  while (const auto pause = proceed()) {
    pass(*pause);
  }
  return problem_.empty();
}

void ScenarioRunner::setWallpaper(const std::string& name) {
  if (hooks_.setWallpaper && !hooks_.setWallpaper(name)) {
    throw ScenarioError("there is no wallpaper \"" + name + "\"");
  }
}

/// From press to release, so that what follows the pointer can.
void ScenarioRunner::drag(const Point& from, const Point& to) {
  StageDesktop& desktop = scene_.world.desktop;
  beats_.push_back({0, [&desktop, from] { desktop.press(from); }});
  for (int move = 1; move <= dragMoves; ++move) {
    const double part = static_cast<double>(move) / dragMoves;
    const Point place{from.x + (to.x - from.x) * part, from.y + (to.y - from.y) * part};
    beats_.push_back({pollInterval, [&desktop, place] { desktop.movePointer(place); }});
  }
  beats_.push_back({pollInterval, [&desktop] { desktop.release(); }});
}

/// One function for each thing that a step can do.
struct ScenarioRunner::Perform {
  ScenarioRunner& runner;
  StageWorld& world = runner.scene_.world;
  StageDesktop& desktop = world.desktop;
  ProgramOnStage& program = runner.scene_.program;

  const std::vector<std::string>& usualArguments() const {
    return runner.scenario_.stage.arguments;
  }
  Point place(const ScenarioTarget& target) const { return locate(target, runner.scene_); }
  std::string player(const std::string& name) const {
    const std::string id = StageWorld::playerID(name);
    if (desktop.players.find(id) == nullptr) {
      throw ScenarioError("\"" + name + "\" does not run");
    }
    return id;
  }

  void operator()(const StartStep& step) const {
    if (step.program == scenarioProgram) {
      if (program.isRunning()) {
        throw ScenarioError("the program runs already");
      }
      program.start(step.arguments.value_or(usualArguments()));
    } else if (step.program == scenarioControlCenter) {
      desktop.controlCenter.launch();
    } else {
      throw ScenarioError("only \"Plemora\" and \"Control Center\" are started; players \"play\"");
    }
  }

  void operator()(const QuitStep& step) const {
    if (step.program == scenarioProgram) {
      requireProgram();
      program.quit();
    } else if (step.program == scenarioControlCenter) {
      throw ScenarioError("Control Center cannot be quit, only killed");
    } else {
      desktop.players.stop(player(step.program));
    }
  }

  void operator()(const KillStep& step) const {
    if (step.program == scenarioProgram) {
      requireProgram();
      program.kill();
    } else if (step.program == scenarioControlCenter) {
      desktop.controlCenter.kill();
    } else {
      desktop.workspace.forceTerminate(desktop.players.find(player(step.program))->pid);
    }
  }

  void operator()(const OpenStep& step) const {
    switch (step.kind) {
      case OpenStep::Kind::url:
        if (!desktop.workspace.openURL(step.name)) {
          throw ScenarioError("nothing opens \"" + step.name + "\"");
        }
        break;
      case OpenStep::Kind::controlCenter:
        if (desktop.controlCenter.isOpen()) {
          throw ScenarioError("Control Center is open already");
        }
        desktop.click(place({ScenarioTarget::Kind::controlCenterItem, "", 0, {}}));
        break;
      case OpenStep::Kind::program:
        if (step.name != scenarioProgram) {
          throw ScenarioError("only \"Plemora\" and \"Control Center\" can be opened by name");
        }
        program.start(usualArguments());
        break;
    }
  }

  void operator()(const ClickStep& step) const {
    constexpr StageButton buttons[] = {StageButton::left, StageButton::right, StageButton::middle};
    desktop.click(place(step.target), buttons[static_cast<std::size_t>(step.button)]);
  }

  void operator()(const DragStep& step) const {
    runner.drag(place(step.from), desktop.space.flipped(step.to));
  }

  void operator()(const SlideStep& step) const {
    const StageControl slider = findControl(step.name, runner.scene_);
    if (!slider.value) {
      throw ScenarioError("\"" + step.name + "\" is no slider");
    }
    const auto at = [&frame = slider.frame](double value) {
      return Point{frame.x + frame.width * std::clamp(value, 0.01, 0.99), frame.midY()};
    };
    runner.drag(at(*slider.value), at(step.to));
  }

  void operator()(const TypeStep& step) const { desktop.type(step.text); }

  void operator()(const KeyStep& step) const {
    for (const ScenarioKey& key : scenarioKeys) {
      if (key.name == step.key) {
        desktop.key(key.code);
      }
    }
  }

  void operator()(const ScrollStep& step) const {
    desktop.scroll(place(step.target), 0, step.notches * scrollPoints, step.notches);
  }

  void operator()(const WaitStep& step) const {
    if (step.until) {
      runner.until_ = step.until;
      runner.untilEnd_ = runner.now() + step.seconds;
    } else {
      runner.due_ = runner.now() + step.seconds;
    }
  }

  void operator()(const PlugStep& step) const { world.plug(step.device); }

  void operator()(const PullStep& step) const {
    if (!desktop.pull(step.uid)) {
      throw ScenarioError("there is no device \"" + step.uid + "\"");
    }
  }

  void operator()(const PlayStep& step) const { world.play(step.player); }

  void operator()(const ChangeStep& step) const {
    world.apply(step.world);
    if (step.world.wallpaper) {
      runner.setWallpaper(*step.world.wallpaper);
    }
  }

  void operator()(const FailStep& step) const { world.faults.add(step); }

  void operator()(const RememberStep& step) const {
    runner.scene_.remembered[step.name] = world.storedLayout();
  }

  void operator()(const ExpectStep& step) const {
    runner.settle();
    if (const auto problem = unmet(step.conditions, runner.scene_)) {
      throw ScenarioError(*problem);
    }
  }

  void operator()(const ScreenshotStep& step) const {
    runner.settle();
    if (runner.hooks_.screenshot) {
      runner.hooks_.screenshot(step.name);
    }
  }

  void requireProgram() const {
    if (!program.isRunning()) {
      throw ScenarioError("the program does not run");
    }
  }
};

void ScenarioRunner::perform(const ScenarioStep& step) {
  std::visit(Perform{*this}, step.action);
}

}  // namespace plemora
