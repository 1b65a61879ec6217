#include "adapters/linux/dbus/mixer_service.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "adapters/linux/dbus/mixer_names.h"
#include "platform/audio_constants.h"

namespace plemora {

namespace {

std::string transportName(FourCharCode transport) {
  switch (transport) {
    case kAudioDeviceTransportTypeBuiltIn:
      return "built-in";
    case kAudioDeviceTransportTypeUSB:
      return "usb";
    case kAudioDeviceTransportTypeBluetooth:
    case kAudioDeviceTransportTypeBluetoothLE:
      return "bluetooth";
    case kAudioDeviceTransportTypeHDMI:
      return "hdmi";
    case kAudioDeviceTransportTypeDisplayPort:
      return "displayport";
    case kAudioDeviceTransportTypeThunderbolt:
      return "thunderbolt";
    case kAudioDeviceTransportTypeAirPlay:
      return "airplay";
    case kAudioDeviceTransportTypeVirtual:
      return "virtual";
    default:
      return "other";
  }
}

// Single precision as people write it: 0.4, not 0.4000000059604645.
double decimal(float value) {
  return std::round(static_cast<double>(value) * 1e6) / 1e6;
}

ServiceError unknownApp(const std::string& id) {
  return {unknownAppError,
          "no app has the id \"" + id +
              "\"; the property Channels lists the apps that play or did so lately"};
}

ServiceError unknownDevice(const std::string& uid) {
  return {unknownDeviceError, "no output device has the uid \"" + uid +
                                  "\"; the property Devices lists those that are connected"};
}

std::optional<ServiceError> checkVolume(double volume) {
  if (std::isfinite(volume)) {
    return std::nullopt;
  }
  return ServiceError{invalidValueError, "the volume is not a number; give one from 0 to 1"};
}

}  // namespace

MixerService::MixerService(MainQueue& mainQueue, MixerModel& model, std::string version)
    : mainQueue_(mainQueue), model_(model), version_(std::move(version)) {
  const auto onChange = [this](const auto&) { changed(); };
  OutputDevices& outputs = model_.outputs();
  subscriptions_.push_back(model_.channels.subscribe([this](const auto&) {
    unpublishedVolumes_.clear();
    changed();
  }));
  subscriptions_.push_back(model_.volumeChange.subscribe([this](const VolumeChange& change) {
    unpublishedVolumes_[change.id] = change;
    changed();
  }));
  subscriptions_.push_back(model_.permission.subscribe(onChange));
  subscriptions_.push_back(outputs.devices.subscribe(onChange));
  subscriptions_.push_back(outputs.defaultDeviceID.subscribe(onChange));
  subscriptions_.push_back(outputs.volume.subscribe(onChange));
  subscriptions_.push_back(outputs.isMuted.subscribe(onChange));
}

MixerState MixerService::state() const {
  MixerState state;
  const OutputDevices& outputs = model_.outputs();
  for (const AppChannel& channel : model_.channels.get()) {
    state.apps.push_back(describe(channel));
  }
  for (const OutputDevice& device : outputs.devices.get()) {
    const bool isDefault = device.id == outputs.defaultDeviceID.get();
    state.devices.push_back(
        {device.uid, device.name, device.symbol, transportName(device.transport), isDefault});
    if (isDefault) {
      state.defaultDevice = device.uid;
    }
  }
  if (const auto volume = outputs.volume.get()) {
    state.volume = decimal(*volume);
  }
  state.muted = outputs.isMuted.get();
  state.permission = statusName(model_.permission.get());
  state.connected = connected_;
  state.demo = model_.isDemo();
  state.version = version_;
  return state;
}

AppState MixerService::describe(const AppChannel& channel) const {
  AppState app{channel.id,
               channel.name,
               channel.icon.source,
               channel.isPlaying,
               decimal(channel.volume),
               channel.isMuted,
               channel.outputUID.value_or(""),
               channel.outputSymbol,
               channel.isRouted};
  if (const auto set = unpublishedVolumes_.find(channel.id); set != unpublishedVolumes_.end()) {
    app.volume = decimal(set->second.volume);
    app.muted = set->second.isMuted;
  }
  return app;
}

void MixerService::setChangeHandler(std::function<void()> handler) {
  changeHandler_ = std::move(handler);
}

void MixerService::setConnected(bool connected) {
  if (connected != connected_) {
    connected_ = connected;
    changed();
  }
}

void MixerService::changed() {
  if (isChangePending_) {
    return;
  }
  isChangePending_ = true;
  mainQueue_.async([this, life = std::weak_ptr<int>(life_)] {
    if (life.expired()) {
      return;
    }
    isChangePending_ = false;
    if (changeHandler_) {
      changeHandler_();
    }
  });
}

const AppChannel* MixerService::findApp(const std::string& id) const {
  const auto& channels = model_.channels.get();
  const auto found = std::find_if(channels.begin(), channels.end(),
                                  [&](const AppChannel& channel) { return channel.id == id; });
  return found == channels.end() ? nullptr : &*found;
}

const OutputDevice* MixerService::findDevice(const std::string& uid) const {
  const auto& devices = model_.outputs().devices.get();
  const auto found = std::find_if(devices.begin(), devices.end(),
                                  [&](const OutputDevice& device) { return device.uid == uid; });
  return found == devices.end() ? nullptr : &*found;
}

ServiceError MixerService::noDevice() const {
  return {noVolumeError, connected_
                             ? "there is no default output device; connect one and choose it"
                             : "there is no sound server, so no output device; start PipeWire"};
}

ServiceResult MixerService::setAppVolume(const std::string& id, double volume) {
  if (const auto error = checkVolume(volume)) {
    return error;
  }
  if (findApp(id) == nullptr) {
    return unknownApp(id);
  }
  model_.setVolume(static_cast<float>(std::clamp(volume, 0.0, 1.0)), id);
  return std::nullopt;
}

ServiceResult MixerService::toggleAppMute(const std::string& id) {
  if (findApp(id) == nullptr) {
    return unknownApp(id);
  }
  model_.toggleMute(id);
  return std::nullopt;
}

ServiceResult MixerService::setAppMute(const std::string& id, bool muted) {
  const AppChannel* app = findApp(id);
  if (app == nullptr) {
    return unknownApp(id);
  }
  if (describe(*app).muted != muted) {
    model_.toggleMute(id);
  }
  return std::nullopt;
}

ServiceResult MixerService::setAppOutput(const std::string& id, const std::string& uid) {
  if (findApp(id) == nullptr) {
    return unknownApp(id);
  }
  if (uid.empty()) {
    model_.setOutput(std::nullopt, id);
    return std::nullopt;
  }
  if (findDevice(uid) == nullptr) {
    return unknownDevice(uid);
  }
  model_.setOutput(uid, id);
  return std::nullopt;
}

ServiceResult MixerService::setVolume(double volume) {
  if (const auto error = checkVolume(volume)) {
    return error;
  }
  OutputDevices& outputs = model_.outputs();
  const auto device = outputs.defaultDevice();
  if (!device) {
    return noDevice();
  }
  if (!outputs.volume.get()) {
    return ServiceError{noVolumeError, "the default device \"" + device->name +
                                           "\" has no volume that can be set; turn it at the "
                                           "device itself"};
  }
  outputs.setVolume(static_cast<float>(std::clamp(volume, 0.0, 1.0)));
  return std::nullopt;
}

ServiceResult MixerService::setMuted(bool muted) {
  OutputDevices& outputs = model_.outputs();
  if (!outputs.defaultDevice()) {
    return noDevice();
  }
  outputs.setMuted(muted);
  return std::nullopt;
}

ServiceResult MixerService::setDefaultDevice(const std::string& uid) {
  const OutputDevice* device = findDevice(uid);
  if (device == nullptr) {
    return unknownDevice(uid);
  }
  // A copy: choosing publishes a new list.
  model_.outputs().choose(OutputDevice(*device));
  return std::nullopt;
}

void MixerService::reload() {
  model_.outputs().reload();
  model_.refreshPermission();
}

ServiceResult MixerService::explain(const std::string& id, AudibilityReport& report) const {
  const auto audibility = model_.audibility(id);
  if (!audibility) {
    return unknownApp(id);
  }
  report.factors.clear();
  for (const AudibilityFactor& factor : audibility->factors) {
    report.factors.push_back({factor.name, factor.value, factor.text});
  }
  report.product = audibility->product;
  report.verdict = audibility->verdict;
  return std::nullopt;
}

std::shared_ptr<void> MixerService::watchLevels(LevelWatcher watcher) {
  return model_.tapLevels().watch(levelInterval, [watcher](const std::vector<TapLevel>& levels) {
    std::vector<LevelReport> reports;
    for (const TapLevel& level : levels) {
      reports.push_back({level.id, level.gain, level.inputPeak, level.peak});
    }
    watcher(reports);
  });
}

}  // namespace plemora
