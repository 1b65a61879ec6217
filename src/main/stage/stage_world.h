#pragma once

#include <memory>
#include <string>
#include <vector>

#include "adapters/stage/desktop/stage_desktop.h"
#include "adapters/stage/faulty_stores.h"
#include "adapters/stage/preference_defaults.h"
#include "adapters/stage/scripted_control_reload.h"
#include "adapters/stage/scripted_notifications.h"
#include "main/stage/scenario.h"
#include "main/stage/stage_storage.h"

namespace plemora {

/// Thrown through the program where a fault says that it is killed. No std::exception, for the
/// program must not be able to catch it.
struct ProgramKilled {};

/// The faults to come in what the program stores. Main thread.
class StageFaults {
 public:
  void add(const FailStep& fault);
  void clear() { faults_.clear(); }

  /// See StoreGate.
  bool passesPreferences(const std::string& call);
  bool passesFiles(const std::string& call);
  StageAnswer answerAccessibility(const std::string& name);

 private:
  /// The one that strikes this call; null: none does.
  const FailStep* striking(FailStep::What what, const std::string& name = {});
  bool passes(FailStep::What what) { return striking(what) == nullptr; }

  std::vector<FailStep> faults_;
};

/// All that outlives a run of the program on the stage: the desktop, and what is stored. Main
/// thread.
class StageWorld {
 public:
  /// With that set up, as far as it is said; but a storage that holds a layout of Control Center
  /// keeps that and the settings. Throws ScenarioError: what only the stage can refuse, and a
  /// storage that cannot be written to.
  explicit StageWorld(const Scenario& scenario, StageStorage storage = StageStorage::inMemory());
  StageWorld(const StageWorld&) = delete;
  StageWorld& operator=(const StageWorld&) = delete;

 private:
  const StageStorage storage_;
  const bool isNew_;
  const std::unique_ptr<Preferences> systemPreferences_ = storage_.makePreferences();
  const std::unique_ptr<Preferences> sharedPreferences_ = storage_.makePreferences();

 public:
  StageFaults faults;
  FaultyFiles files{*storage_.files};
  ScriptedNotifications notifications;
  ScriptedControlReload controlReload;
  StageDesktop desktop;
  PreferenceDefaults defaults;  ///< of the program

  /// Of a program that starts now: what it does not synchronize is lost with them.
  std::unique_ptr<Preferences> makePreferences() const { return storage_.makePreferences(); }
  /// Whether the file in which the program keeps the layout of before exists.
  bool hasBackup();

  /// The two preference values of Control Center as they are stored, empty where there is none.
  std::string storedLayout();
  /// Makes true what is said; what is not said stays as it is.
  void apply(const ScenarioWorld& world);
  void plug(const ScenarioDevice& device);
  void play(const ScenarioPlayer& player);

  /// The bundle identifier of a player of that name.
  static std::string playerID(const std::string& name) { return "org.example." + name; }

 private:
  void setScreens(const std::vector<ScenarioScreen>& screens);
};

}  // namespace plemora
