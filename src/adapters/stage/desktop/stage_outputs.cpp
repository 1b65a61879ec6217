#include "adapters/stage/desktop/stage_outputs.h"

#include <algorithm>

#include "adapters/stage/simulated_hal.h"
#include "platform/audio_constants.h"

namespace plemora {

std::vector<AudioObjectID> stageOutputs(SimulatedHal& hal) {
  constexpr AudioObjectPropertyAddress devices{kAudioHardwarePropertyDevices,
                                               kAudioObjectPropertyScopeGlobal,
                                               kAudioObjectPropertyElementMain};
  std::size_t size = 0;
  if (hal.dataSize(kAudioObjectSystemObject, devices, size) != noErr) {
    return {};
  }
  std::vector<AudioObjectID> ids(size / sizeof(AudioObjectID));
  if (hal.data(kAudioObjectSystemObject, devices, size, ids.data()) != noErr) {
    return {};
  }
  ids.resize(size / sizeof(AudioObjectID));
  const auto ours = hal.liveAggregateIDs();
  std::erase_if(ids, [&](AudioObjectID id) {
    const SimulatedDevice device = hal.device(id);
    return device.isHidden || device.outputStreams.empty() ||
           std::ranges::find(ours, id) != ours.end();
  });
  return ids;
}

}  // namespace plemora
