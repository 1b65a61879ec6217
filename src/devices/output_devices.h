#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "audio/objects/audio_listener_token.h"
#include "base/published.h"
#include "devices/device_symbols.h"
#include "devices/output_device.h"
#include "platform/audio_properties.h"
#include "platform/system_info.h"

namespace plemora {

/// Lists the output devices that a user can choose, follows the default one, and reads and sets
/// its master volume and mute. Main thread only. The references must outlive it.
class OutputDevices {
 public:
  /// Asked for demo rows at every reload; may be empty.
  using DemoProvider = std::function<DemoDevices()>;

  OutputDevices(AudioProperties& properties, SystemInfo& system, DemoProvider demoDevices = {});
  OutputDevices(const OutputDevices&) = delete;
  OutputDevices& operator=(const OutputDevices&) = delete;

  /// The devices, nearest to the user first: by rank of their transport, then by id.
  Published<std::vector<OutputDevice>> devices;
  /// The system's default output device; 0 when there is none.
  Published<AudioObjectID> defaultDeviceID;
  /// Master volume of the default device, 0...1; none when it has no settable one.
  Published<std::optional<float>> volume;
  Published<bool> isMuted;

  /// The element of devices that is the default one.
  std::optional<OutputDevice> defaultDevice() const;

  /// Reads everything anew and publishes it.
  void reload();

  /// Sets the default device's master volume, clamped to 0...1. Above 0 it also unmutes.
  void setVolume(float value);

  /// Mutes or unmutes the default device.
  void setMuted(bool muted);

  /// Makes the device the default for sound and for alerts. A demo row changes nothing.
  void choose(const OutputDevice& device);

 private:
  std::vector<OutputDevice> readDevices();
  std::optional<OutputDevice> describe(AudioObjectID id);
  void observeVolume();
  void readVolume();

  AudioProperties& properties_;
  DeviceSymbols symbols_;
  DemoProvider demoDevices_;
  std::vector<AudioListenerToken> systemTokens_;  // on the system object
  std::vector<AudioListenerToken> deviceTokens_;  // on the default device
};

}  // namespace plemora
