#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "audio/app_channel.h"
#include "audio/app_levels.h"
#include "audio/app_taps.h"
#include "audio/audibility.h"
#include "audio/audio_app_scanner.h"
#include "audio/audio_permission.h"
#include "audio/demo_mode.h"
#include "audio/mixer_services.h"
#include "audio/tap_levels.h"
#include "base/published.h"
#include "devices/output_devices.h"

namespace plemora {

/// What setVolume has stored for an app.
struct VolumeChange {
  std::string id;  ///< bundle identifier
  float volume = 1.0f;
  bool isMuted = false;
};

/// The mixer: takes the list of apps that play, remembers each app's volume, mute and output,
/// decides which app needs a tap, and publishes one row for each app. Main thread only. Ids are
/// bundle identifiers. In demo mode it publishes prepared rows and touches no audio.
class MixerModel {
 public:
  static constexpr double lingerInterval = 600.0;  ///< seconds that a silent app stays listed

  explicit MixerModel(MixerServices services);
  MixerModel(const MixerModel&) = delete;
  MixerModel& operator=(const MixerModel&) = delete;
  /// Every tap is gone when it returns: apps are heard on their usual path again.
  ~MixerModel();

  OutputDevices& outputs() { return outputs_; }

  /// The rows, sorted by name. The model alone assigns them.
  Published<std::vector<AppChannel>> channels;
  /// As of creation and of the last refreshPermission().
  Published<AudioPermission::Status> permission;
  /// Assigned by every setVolume outside demo mode, which the rows do not follow by themselves.
  Published<VolumeChange> volumeChange;

  /// Stores the volume, clamped to 0...1; one above 0 unmutes. NaN is ignored. The rows are not
  /// published: whoever moves the slider shows its position already.
  void setVolume(float volume, const std::string& id);
  void toggleMute(const std::string& id);
  /// Stores the device on which the app is to be heard; none, or the device that the app plays to
  /// anyway, makes it follow the default.
  void setOutput(const std::optional<std::string>& uid, const std::string& id);

  /// Brings the rows up to date. The model does so by itself but after setVolume: a caller that
  /// shows no slider of its own follows it with this.
  void publish();

  /// Asks the consent service again and publishes the answer if it has changed.
  void refreshPermission();

  TapLevels& tapLevels() { return tapLevels_; }

  /// Why the app is or is not heard right now; none for an app that has no row.
  std::optional<Audibility> audibility(const std::string& id);

  bool isDemo() const { return demoChannels_.has_value(); }

 private:
  /// Where an app plays and where it is to be heard. 0 and an empty UID: nowhere.
  struct Route {
    AudioObjectID source = 0;
    std::string sourceUID;
    AudioObjectID target = 0;
    std::string targetUID;
    bool isRouted() const { return sourceUID != targetUID; }
  };

  void observeOutputs();
  void update(const std::vector<AudioApp>& apps);
  void syncTap(const std::string& id);
  void rebuildAllTaps();
  void save();
  bool isListed(const AudioApp& app, WallTime now) const;
  AppChannel channel(const AudioApp& app) const;
  void changeDemo(const std::string& id, const std::function<void(AppChannel&)>& change);
  void publishDemo();

  Level level(const std::string& id) const;
  AudioObjectID sourceDevice(const AudioApp& app, std::string& uid) const;
  const OutputDevice* outputWithUID(const std::string& uid) const;  // valid until the next reload
  const OutputDevice* routedDevice(const std::string& id) const;
  Route route(const AudioApp& app) const;
  bool needsTap(const std::string& id, const Route& route) const;
  AudibilityFacts::Tap tapState(const std::string& id, const Route& route) const;
  void describeDevice(AudioObjectID device, AudibilityFacts& facts) const;

  const MixerServices services_;
  DemoMode demo_;
  OutputDevices outputs_;
  AudioPermission audioPermission_;
  std::optional<AudioAppScanner> scanner_;  // none in demo mode
  std::map<std::string, AudioApp> apps_;
  std::map<std::string, WallTime> lastHeard_;
  AppLevels store_;
  Levels levels_;
  AppTaps taps_;
  TapLevels tapLevels_;
  std::map<std::string, Image> icons_;
  std::vector<Subscription> cancellables_;
  std::optional<std::vector<AppChannel>> demoChannels_;
};

}  // namespace plemora
