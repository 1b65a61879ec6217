#include "adapters/stage/simulated_object.h"

#include <algorithm>

namespace plemora {

bool HalState::exists(AudioObjectID object) const {
  return object == kAudioObjectSystemObject || devices.contains(object) ||
         processes.contains(object) || taps.contains(object);
}

AudioObjectID HalState::deviceWithUID(const std::string& uid) const {
  const auto found = std::ranges::find_if(
      devices, [&](const auto& entry) { return entry.second.facts.uid == uid; });
  return found == devices.end() ? kAudioObjectUnknown : found->first;
}

AudioObjectID HalState::tapWithUUID(const std::string& uuid) const {
  const auto found = std::ranges::find_if(
      taps, [&](const auto& entry) { return entry.second.description.uuid == uuid; });
  return found == taps.end() ? kAudioObjectUnknown : found->first;
}

std::vector<HalStream> HalState::activeStreams(const HalDevice& device,
                                               AudioObjectPropertyScope scope) const {
  auto streams = scope == kAudioObjectPropertyScopeInput ? device.inputs : device.outputs;
  std::erase_if(streams, [&](const HalStream& stream) {
    const auto member =
        stream.isTap ? tapWithUUID(stream.memberUID) : deviceWithUID(stream.memberUID);
    return member == kAudioObjectUnknown;
  });
  return streams;
}

AudioObjectID HalState::fallbackOutput() const {
  for (const auto& [id, device] : devices) {
    if (!device.isOurs && !device.facts.isHidden && !device.outputs.empty()) {
      return id;
    }
  }
  return kAudioObjectUnknown;
}

}  // namespace plemora
