#include <algorithm>
#include <cstdint>
#include <utility>

#include "audio/mixer_model.h"
#include "audio/objects/audio_object.h"
#include "audio/objects/private_devices.h"

// Which way an app's sound goes, and which apps need a tap for it.

namespace plemora {

namespace {

/// From this gain on an app counts as being at full volume.
constexpr float fullGain = 0.999f;

}  // namespace

Level MixerModel::level(const std::string& id) const {
  const auto stored = levels_.find(id);
  return stored == levels_.end() ? Level{} : stored->second;
}

AudioObjectID MixerModel::sourceDevice(const AudioApp& app, std::string& uid) const {
  const auto deviceUID = [this](AudioObjectID device) {
    return AudioObject(services_.properties, device)
        .getString(kAudioDevicePropertyDeviceUID, kAudioObjectPropertyScopeGlobal)
        .value_or("");
  };
  for (const AudioObjectID device : app.outputDevices) {
    if (device == kAudioObjectUnknown) {
      continue;
    }
    // A device without a UID has just gone. One of ours: the app already plays into its own tap.
    uid = deviceUID(device);
    if (!uid.empty() && !isPrivateDeviceUID(uid)) {
      return device;
    }
  }
  const AudioObjectID device = outputs_.defaultDeviceID.get();
  uid = device == kAudioObjectUnknown ? "" : deviceUID(device);
  return device;
}

const OutputDevice* MixerModel::outputWithUID(const std::string& uid) const {
  const auto& devices = outputs_.devices.get();
  const auto found = std::ranges::find(devices, uid, &OutputDevice::uid);
  return found == devices.end() ? nullptr : &*found;
}

const OutputDevice* MixerModel::routedDevice(const std::string& id) const {
  const auto output = level(id).output;
  return output ? outputWithUID(*output) : nullptr;
}

MixerModel::Route MixerModel::route(const AudioApp& app) const {
  Route route;
  route.source = sourceDevice(app, route.sourceUID);
  const OutputDevice* chosen = routedDevice(app.id);
  route.target = chosen ? chosen->id : route.source;
  route.targetUID = chosen ? chosen->uid : route.sourceUID;
  return route;
}

bool MixerModel::needsTap(const std::string& id, const Route& route) const {
  return level(id).gain() < fullGain || route.isRouted();
}

void MixerModel::syncTap(const std::string& id) {
  const auto app = apps_.find(id);
  if (app == apps_.end()) {
    taps_.discardTap(id);
    return;
  }
  // Full volume on the app's own device is left untouched, and without any device there is
  // nothing to play a tap on.
  const Route route = this->route(app->second);
  if (!needsTap(id, route) || route.targetUID.empty()) {
    taps_.discardTap(id);
    return;
  }
  taps_.sync({.bundleID = id,
              .processObjects = app->second.processObjects,
              .outputUID = route.targetUID,
              .sourceUID = route.sourceUID},
             route.target, level(id).gain());
}

void MixerModel::rebuildAllTaps() {
  const auto tapped = taps_.ids();
  for (const std::string& id : tapped) {
    taps_.discardTap(id);
    syncTap(id);
  }
  // The other apps may need a tap only now, or be due for another attempt.
  for (const auto& [id, app] : apps_) {
    if (!std::ranges::binary_search(tapped, id)) {
      syncTap(id);
    }
  }
  // Rows that follow the default device show another one now, and a tap that is not needed any
  // longer must not leave its row behind.
  publish();
}

std::optional<Audibility> MixerModel::audibility(const std::string& id) {
  const auto& rows = channels.get();
  const auto row = std::ranges::find(rows, id, &AppChannel::id);
  if (row == rows.end()) {
    return std::nullopt;
  }
  AudibilityFacts facts;
  facts.appName = row->name;
  facts.isPlaying = row->isPlaying;
  facts.level = demoChannels_ ? Level{row->volume, row->isMuted, row->outputUID} : level(id);
  facts.isRouted = row->isRouted;
  facts.chosenOutputIsMissing = facts.level.output && !outputWithUID(*facts.level.output);
  facts.permission = audioPermission_.status();
  AudioObjectID device = outputs_.defaultDeviceID.get();
  if (const auto app = apps_.find(id); app != apps_.end()) {
    const Route route = this->route(app->second);
    facts.tap = tapState(id, route);
    device = facts.tap == AudibilityFacts::Tap::missing ? route.source : route.target;
    facts.isRouted = device != route.source;
  }
  describeDevice(device, facts);
  return explainAudibility(facts);
}

AudibilityFacts::Tap MixerModel::tapState(const std::string& id, const Route& route) const {
  using Tap = AudibilityFacts::Tap;
  if (!needsTap(id, route)) {
    return Tap::notNeeded;
  }
  if (taps_.isBuilding(id)) {
    return Tap::building;
  }
  return taps_.hasTap(id) ? Tap::running : Tap::missing;
}

void MixerModel::describeDevice(AudioObjectID device, AudibilityFacts& facts) const {
  constexpr auto output = kAudioObjectPropertyScopeOutput;
  constexpr auto volume = kAudioHardwareServiceDeviceProperty_VirtualMainVolume;
  if (device == kAudioObjectUnknown) {
    return;
  }
  const AudioObject object(services_.properties, device);
  facts.deviceName = object.getString(kAudioObjectPropertyName, kAudioObjectPropertyScopeGlobal)
                         .value_or("device " + std::to_string(device));
  facts.deviceIsMuted =
      object.readValue<std::uint32_t>(kAudioDevicePropertyMute, output).value_or(0) != 0;
  const AudioObjectPropertyAddress address{volume, output, kAudioObjectPropertyElementMain};
  if (services_.properties.isSettable(device, address) == true) {
    facts.deviceVolume = object.readValue<float>(volume, output);
  }
}

}  // namespace plemora
