#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/app_delegate.h"
#include "main/stage/stage_world.h"
#include "skin/look/control_center_look.h"

namespace plemora {

/// What the program is shown by.
struct ProgramFace {
  Windows& windows;  ///< in which it opens its panels; outlives the program
  std::function<std::shared_ptr<HostedView>(PanelView&, const ControlCenterLook&)> makeContent;
  /// Empty: modules are not drawn.
  std::function<std::shared_ptr<HostedView>(SkinState&, const ControlCenterLook&)> makeModuleView{};
  /// What draws setup; empty: nothing is drawn, and it runs all the same.
  std::function<OnboardingContents(const ControlCenterLook&)> makeOnboardingContents{};
  /// What comes with the program; outlives it. Null: nothing.
  Resources* resources = nullptr;
  /// Makes the mixer of a run, which may exchange services for others; empty: the stage's are used.
  std::function<std::shared_ptr<MixerModel>(const MixerServices&)> makeModel{};
};

/// The whole program on the stage: the composition root that gives the AppDelegate its world, and
/// what the system does with a program: starts it, also for a URL or for the press of its tile,
/// ends it in order, kills it. Main thread; world and face outlive it. A program that still runs is
/// killed with it.
class ProgramOnStage {
 public:
  static constexpr const char* bundleID = "com.quorvane.mixer";
  static constexpr const char* name = "Plemora";

  ProgramOnStage(StageWorld& world, ProgramFace face);
  ~ProgramOnStage();
  ProgramOnStage(const ProgramOnStage&) = delete;
  ProgramOnStage& operator=(const ProgramOnStage&) = delete;

  /// When it runs already, the user opens it again.
  void start(const std::vector<std::string>& arguments = {});
  /// Asks it to end, as its own menu does.
  void quit();
  void kill();
  bool isRunning() const { return run_ != nullptr; }
  /// Hands it URLs of its scheme; starts it first if need be.
  void openURL(const std::string& url);

  /// What it has printed since it was last started.
  const std::vector<std::string>& printed() const { return printed_; }
  /// The status that it ended with by itself; none while it runs, and when it was killed.
  std::optional<int> exitStatus() const { return exitStatus_; }
  /// Null while it does not run.
  AppDelegate* delegate();

  /// Does something that may reach the program, and kills it where a fault says so.
  void guard(const std::function<void()>& act);

 private:
  struct Run;

  AppServices services(Run& run, const std::vector<std::string>& arguments);
  void quitNow();
  void end(int status);
  void later(std::function<void()> work);

  StageWorld& world_;
  const ProgramFace face_;
  std::vector<std::string> printed_;
  std::optional<int> exitStatus_;
  std::unique_ptr<Run> run_;
  std::shared_ptr<int> life_ = std::make_shared<int>(0);  // expires for what waits in the queue
};

}  // namespace plemora
