#pragma once

#include <cstdint>
#include <list>
#include <memory>
#include <string>

#include "adapters/stage/desktop/stage_window_record.h"
#include "base/geometry.h"
#include "platform/audio_properties.h"

namespace plemora {

class SimulatedHal;
class StageWorkspace;

/// An app that plays a tone, with a window.
struct StagePlayer {
  std::string bundleID{};
  std::string name{};
  double frequency = 440;  ///< Hz
  float amplitude = 0.2F;
  std::string deviceUID{};  ///< empty: the default output
  std::int32_t pid = -1;
  bool isPlaying = false;
  Rect frame{};  ///< global, y up

  AudioObjectID process = 0;  ///< of the hardware layer
  std::int64_t number = 0;
  std::int64_t order = 0;
};

/// The players of the stage. A player's window has a button that pauses it, is moved by the rest of
/// it, and a press activates the app. Main thread; what it is given outlives it.
class StagePlayers : public StageWindowOwner {
 public:
  StagePlayers(SimulatedHal& hal, StageWorkspace& workspace, StageWindowNumbers& numbers);
  ~StagePlayers() override;
  StagePlayers(const StagePlayers&) = delete;
  StagePlayers& operator=(const StagePlayers&) = delete;

  /// Starts the app, and has it play to the device of that UID, or (empty) to whatever is the
  /// default output. The result holds until it is stopped.
  StagePlayer& start(const std::string& bundleID, const std::string& name, double frequency = 440,
                     float amplitude = 0.2F, const std::string& deviceUID = {});
  void stop(const std::string& bundleID);
  /// Its process stays, and plays nothing.
  void setPlaying(const std::string& bundleID, bool isPlaying);
  /// Null: it does not run.
  StagePlayer* find(const std::string& bundleID);
  const std::list<StagePlayer>& players() const { return players_; }

  static Rect button(const StagePlayer& player);  ///< that pauses and resumes; global, y up

  void appendWindows(std::vector<StageWindowRecord>& windows) override;
  void pointer(const StageWindowRecord& window, const StagePointerEvent& event) override;

 private:
  void ended(std::int32_t pid);
  /// Each plays to its device, or to the default output while that is not there.
  void route();

  SimulatedHal& hal_;
  StageWorkspace& workspace_;
  StageWindowNumbers& numbers_;
  std::list<StagePlayer> players_;
  int started_ = 0;
  Point grip_;  // of the window that is being moved, from its origin
  bool isOnButton_ = false;
  std::shared_ptr<AudioListenerBlock> outputsChanged_;
};

}  // namespace plemora
