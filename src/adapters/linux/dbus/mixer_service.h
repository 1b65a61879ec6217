#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "adapters/linux/dbus/mixer_state.h"
#include "audio/mixer_model.h"
#include "base/published.h"
#include "platform/main_queue.h"

namespace plemora {

/// A refusal, as the bus carries it.
struct ServiceError {
  std::string name;     ///< one of the error names of mixer_names.h
  std::string message;  ///< what was wrong and what to do

  bool operator==(const ServiceError&) const = default;
};

/// None: done.
using ServiceResult = std::optional<ServiceError>;

/// What other programs may ask of the mixer: checks every argument, hands it to the model, and
/// gathers changes so that observers hear of them once per turn of the main loop. Knows nothing of
/// the bus. Main thread only.
class MixerService {
 public:
  /// Seconds between two level reports.
  static constexpr double levelInterval = 0.1;

  using LevelWatcher = std::function<void(const std::vector<LevelReport>&)>;

  /// Both must outlive it.
  MixerService(MainQueue& mainQueue, MixerModel& model, std::string version);
  MixerService(const MixerService&) = delete;
  MixerService& operator=(const MixerService&) = delete;

  MixerState state() const;

  /// Called after changes of the state, at most once per turn of the main loop.
  void setChangeHandler(std::function<void()> handler);

  /// Whether there is a sound server.
  void setConnected(bool connected);

  ServiceResult setAppVolume(const std::string& id, double volume);
  ServiceResult toggleAppMute(const std::string& id);
  ServiceResult setAppMute(const std::string& id, bool muted);
  /// An empty UID lets the app follow the default device.
  ServiceResult setAppOutput(const std::string& id, const std::string& uid);
  ServiceResult setVolume(double volume);
  ServiceResult setMuted(bool muted);
  ServiceResult setDefaultDevice(const std::string& uid);

  /// Reads devices and permission anew.
  void reload();

  /// Why the app is heard or not; an error for one that has no row.
  ServiceResult explain(const std::string& id, AudibilityReport& report) const;

  /// Calls the watcher every levelInterval until the result is dropped. Nothing runs while nobody
  /// watches.
  [[nodiscard]] std::shared_ptr<void> watchLevels(LevelWatcher watcher);

 private:
  const AppChannel* findApp(const std::string& id) const;
  const OutputDevice* findDevice(const std::string& uid) const;
  AppState describe(const AppChannel& channel) const;
  ServiceError noDevice() const;
  void changed();

  MainQueue& mainQueue_;
  MixerModel& model_;
  std::string version_;
  bool connected_ = false;
  std::map<std::string, VolumeChange> unpublishedVolumes_;  // set since the rows were published
  std::function<void()> changeHandler_;
  bool isChangePending_ = false;
  std::vector<Subscription> subscriptions_;
  std::shared_ptr<int> life_ = std::make_shared<int>(0);  // expires for work still in the queue
};

}  // namespace plemora
