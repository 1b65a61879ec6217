#include "devices/output_devices.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "audio/objects/audio_object.h"
#include "audio/objects/private_devices.h"
#include "platform/audio_constants.h"

namespace plemora {

namespace {

// Sound of this computer first, receivers elsewhere in the house last.
int transportRank(FourCharCode transport) {
  switch (transport) {
    case kAudioDeviceTransportTypeBuiltIn:
      return 0;
    case kAudioDeviceTransportTypeUSB:
      return 1;
    case kAudioDeviceTransportTypeBluetooth:
    case kAudioDeviceTransportTypeBluetoothLE:
      return 2;
    case kAudioDeviceTransportTypeDisplayPort:
    case kAudioDeviceTransportTypeHDMI:
    case kAudioDeviceTransportTypeThunderbolt:
      return 3;
    case kAudioDeviceTransportTypeAirPlay:
      return 5;
    default:
      return 4;
  }
}

constexpr AudioObjectPropertyAddress masterVolumeAddress{
    kAudioHardwareServiceDeviceProperty_VirtualMainVolume, kAudioObjectPropertyScopeOutput,
    kAudioObjectPropertyElementMain};

}  // namespace

OutputDevices::OutputDevices(AudioProperties& properties, SystemInfo& system,
                             DemoProvider demoDevices)
    : properties_(properties), symbols_(properties, system), demoDevices_(std::move(demoDevices)) {
  for (const auto selector :
       {kAudioHardwarePropertyDevices, kAudioHardwarePropertyDefaultOutputDevice}) {
    if (auto token =
            listen(properties_, kAudioObjectSystemObject, selector, kAudioObjectPropertyScopeGlobal,
                   kAudioObjectPropertyElementMain, [this] { reload(); })) {
      systemTokens_.push_back(std::move(*token));
    }
  }
  reload();
}

std::optional<OutputDevice> OutputDevices::defaultDevice() const {
  const auto& all = devices.get();
  const auto found = std::ranges::find(all, defaultDeviceID.get(), &OutputDevice::id);
  return found == all.end() ? std::nullopt : std::optional(*found);
}

void OutputDevices::reload() {
  devices.set(readDevices());
  const AudioObject system(properties_, kAudioObjectSystemObject);
  defaultDeviceID.set(system
                          .readValue<AudioObjectID>(kAudioHardwarePropertyDefaultOutputDevice,
                                                    kAudioObjectPropertyScopeGlobal)
                          .value_or(kAudioObjectUnknown));
  observeVolume();
  readVolume();
}

std::vector<OutputDevice> OutputDevices::readDevices() {
  DemoDevices demo = demoDevices_ ? demoDevices_() : DemoDevices{};
  std::vector<OutputDevice> result;
  if (!demo.hideReal) {
    auto ids = AudioObject(properties_, kAudioObjectSystemObject)
                   .getArray(kAudioHardwarePropertyDevices, kAudioObjectPropertyScopeGlobal);
    std::ranges::sort(ids);
    for (const AudioObjectID id : ids) {
      if (auto device = describe(id)) {
        result.push_back(std::move(*device));
      }
    }
  }
  std::ranges::move(demo.extra, std::back_inserter(result));
  std::ranges::stable_sort(result, {}, [](const OutputDevice& device) {
    return std::pair(transportRank(device.transport), device.id);
  });
  return result;
}

// None for what the user cannot choose: inputs, devices of our own taps, hidden ones.
std::optional<OutputDevice> OutputDevices::describe(AudioObjectID id) {
  const AudioObject object(properties_, id);
  if (object.getArray(kAudioDevicePropertyStreams, kAudioObjectPropertyScopeOutput).empty()) {
    return std::nullopt;
  }
  // A device that cannot say its UID has vanished since the list was read.
  auto uid = object.getString(kAudioDevicePropertyDeviceUID, kAudioObjectPropertyScopeGlobal);
  if (!uid || isPrivateDeviceUID(*uid)) {
    return std::nullopt;
  }
  if (object.readValue<std::uint32_t>(kAudioDevicePropertyIsHidden, kAudioObjectPropertyScopeGlobal)
          .value_or(0) != 0) {
    return std::nullopt;
  }
  OutputDevice device;
  device.id = id;
  device.uid = std::move(*uid);
  device.name =
      object.getString(kAudioObjectPropertyName, kAudioObjectPropertyScopeGlobal).value_or("");
  device.transport = object
                         .readValue<FourCharCode>(kAudioDevicePropertyTransportType,
                                                  kAudioObjectPropertyScopeGlobal)
                         .value_or(kAudioDeviceTransportTypeUnknown);
  device.symbol = symbols_.symbol(id, device.name, device.transport);
  return device;
}

void OutputDevices::observeVolume() {
  // The old listeners go only after the new ones stand, so that no change falls in between.
  std::vector<AudioListenerToken> tokens;
  for (const auto selector : {kAudioHardwareServiceDeviceProperty_VirtualMainVolume,
                              kAudioDevicePropertyMute, kAudioDevicePropertyVolumeScalar}) {
    if (auto token =
            listen(properties_, defaultDeviceID.get(), selector, kAudioObjectPropertyScopeOutput,
                   kAudioObjectPropertyElementMain, [this] { readVolume(); })) {
      tokens.push_back(std::move(*token));
    }
  }
  deviceTokens_ = std::move(tokens);
}

void OutputDevices::readVolume() {
  const AudioObject device(properties_, defaultDeviceID.get());
  std::optional<float> master;
  if (properties_.isSettable(device.id(), masterVolumeAddress).value_or(false)) {
    master = device.readValue<float>(masterVolumeAddress.mSelector, masterVolumeAddress.mScope);
  }
  volume.set(master);
  isMuted.set(
      device.readValue<std::uint32_t>(kAudioDevicePropertyMute, kAudioObjectPropertyScopeOutput)
          .value_or(0) != 0);
}

void OutputDevices::setVolume(float value) {
  // Written so that a value that is no number counts as 0.
  const float clamped = value > 0 ? std::min(value, 1.0F) : 0.0F;
  const AudioObject device(properties_, defaultDeviceID.get());
  device.write(masterVolumeAddress.mSelector, masterVolumeAddress.mScope, clamped);
  if (isMuted.get() && clamped > 0) {
    setMuted(false);
  }
}

void OutputDevices::setMuted(bool muted) {
  AudioObject(properties_, defaultDeviceID.get())
      .write<std::uint32_t>(kAudioDevicePropertyMute, kAudioObjectPropertyScopeOutput,
                            muted ? 1 : 0);
}

void OutputDevices::choose(const OutputDevice& device) {
  if (device.uid.starts_with(demoDeviceUIDPrefix)) {
    return;
  }
  const AudioObject system(properties_, kAudioObjectSystemObject);
  for (const auto selector : {kAudioHardwarePropertyDefaultOutputDevice,
                              kAudioHardwarePropertyDefaultSystemOutputDevice}) {
    system.write(selector, kAudioObjectPropertyScopeGlobal, device.id);
  }
  reload();
}

}  // namespace plemora
