#pragma once

#include <string>
#include <vector>

#include "platform/audio_properties.h"

namespace plemora {

/// The physical devices that make up an output.
struct PlaybackDevices {
  std::vector<AudioObjectID> devices;
  std::vector<std::string> uids;  ///< one for each device
  std::string main;               ///< UID of the device whose clock leads
};

/// An ordinary device stands for itself. A user's own aggregate device is taken apart into its
/// members that play, so that it can be rebuilt beside a tap instead of being nested. Any thread
/// but a real-time one; what cannot be read counts as absent.
PlaybackDevices playbackDevices(AudioProperties& properties, AudioObjectID device,
                                const std::string& uid);

}  // namespace plemora
