#include "audio/playback_devices.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "audio/objects/audio_object.h"

namespace plemora {

PlaybackDevices playbackDevices(AudioProperties& properties, AudioObjectID device,
                                const std::string& uid) {
  const PlaybackDevices alone{{device}, {uid}, uid};
  const AudioObject output(properties, device);
  const auto transport = output.readValue<std::uint32_t>(kAudioDevicePropertyTransportType,
                                                         kAudioObjectPropertyScopeGlobal);
  if (transport != kAudioDeviceTransportTypeAggregate) {
    return alone;
  }

  PlaybackDevices kept;
  for (const AudioObjectID id : output.getArray(kAudioAggregateDevicePropertyActiveSubDeviceList,
                                                kAudioObjectPropertyScopeGlobal)) {
    const AudioObject member(properties, id);
    if (member.getArray(kAudioDevicePropertyStreams, kAudioObjectPropertyScopeOutput).empty()) {
      continue;
    }
    // A member without a UID cannot be named in another aggregate device.
    if (auto memberUID =
            member.getString(kAudioDevicePropertyDeviceUID, kAudioObjectPropertyScopeGlobal)) {
      kept.devices.push_back(id);
      kept.uids.push_back(std::move(*memberUID));
    }
  }
  if (kept.devices.empty()) {
    return alone;
  }
  const auto main =
      output.getString(kAudioAggregateDevicePropertyMainSubDevice, kAudioObjectPropertyScopeGlobal);
  const bool mainIsKept =
      main && std::find(kept.uids.begin(), kept.uids.end(), *main) != kept.uids.end();
  kept.main = mainIsKept ? *main : kept.uids.front();
  return kept;
}

}  // namespace plemora
