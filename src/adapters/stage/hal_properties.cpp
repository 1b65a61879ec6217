#include "adapters/stage/hal_properties.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <type_traits>

namespace plemora {

namespace {

using Bytes = std::span<const std::byte>;
using Value = std::optional<HalValue>;
using Scope = AudioObjectPropertyScope;
using Owner = HalProperty::Owner;

constexpr Scope global = kAudioObjectPropertyScopeGlobal;
constexpr Scope input = kAudioObjectPropertyScopeInput;
constexpr Scope output = kAudioObjectPropertyScopeOutput;

template <typename T>
Value valueOf(const T& plain) {
  static_assert(std::is_trivially_copyable_v<T>);
  std::vector<std::byte> bytes(sizeof(T));
  std::memcpy(bytes.data(), &plain, sizeof(T));
  return bytes;
}

template <typename T>
Value valueOf(const std::optional<T>& maybe) {
  return maybe ? valueOf(*maybe) : std::nullopt;
}

Value valueOf(const std::vector<AudioObjectID>& ids) {
  std::vector<std::byte> bytes(ids.size() * sizeof(AudioObjectID));
  if (!ids.empty()) {
    std::memcpy(bytes.data(), ids.data(), bytes.size());
  }
  return bytes;
}

Value textOf(std::optional<std::string> text) {
  return HalValue(std::move(text));
}

template <typename T>
std::optional<T> plainFrom(Bytes bytes) {
  if (bytes.size() != sizeof(T)) {
    return std::nullopt;
  }
  T plain;
  std::memcpy(&plain, bytes.data(), sizeof(T));
  return plain;
}

template <typename Map>
std::vector<AudioObjectID> keysOf(const Map& map) {
  std::vector<AudioObjectID> keys;
  for (const auto& entry : map) {
    keys.push_back(entry.first);
  }
  return keys;
}

const SimulatedDevice& facts(const HalState& state, AudioObjectID device) {
  return state.devices.at(device).facts;
}

// Stores a fixed-size value into a field of a device.
template <typename T, typename Field>
OSStatus writeInto(Field& field, Bytes bytes) {
  const auto plain = plainFrom<T>(bytes);
  if (!plain) {
    return kAudioHardwareBadPropertySizeError;
  }
  field = static_cast<std::remove_cvref_t<decltype(field)>>(*plain);
  return noErr;
}

OSStatus writeDefault(HalState& state, AudioObjectID HalState::*field, Bytes bytes) {
  const auto id = plainFrom<AudioObjectID>(bytes);
  if (!id) {
    return kAudioHardwareBadPropertySizeError;
  }
  const auto device = state.devices.find(*id);
  if (device == state.devices.end() || device->second.outputs.empty()) {
    return kAudioHardwareBadDeviceError;
  }
  state.*field = *id;
  return noErr;
}

Value readDefault(const HalState& state, AudioObjectID, Scope, Bytes) {
  return valueOf(state.defaultOutput);
}

Value readDefaultSystem(const HalState& state, AudioObjectID, Scope, Bytes) {
  return valueOf(state.defaultSystemOutput);
}

OSStatus setDefault(HalState& state, AudioObjectID, Scope, Bytes bytes) {
  return writeDefault(state, &HalState::defaultOutput, bytes);
}

OSStatus setDefaultSystem(HalState& state, AudioObjectID, Scope, Bytes bytes) {
  return writeDefault(state, &HalState::defaultSystemOutput, bytes);
}

Value readStreams(const HalState& state, AudioObjectID device, Scope scope, Bytes) {
  std::vector<AudioObjectID> ids;
  for (const HalStream& stream : state.activeStreams(state.devices.at(device), scope)) {
    ids.push_back(stream.id);
  }
  return valueOf(ids);
}

Value readVolume(const HalState& state, AudioObjectID device, Scope, Bytes) {
  return valueOf(facts(state, device).volume);
}

OSStatus writeVolume(HalState& state, AudioObjectID device, Scope, Bytes bytes) {
  const auto value = plainFrom<float>(bytes);
  if (!value) {
    return kAudioHardwareBadPropertySizeError;
  }
  if (!(*value >= 0 && *value <= 1)) {
    return kAudioHardwareIllegalOperationError;
  }
  state.devices.at(device).facts.volume = *value;
  return noErr;
}

bool isVolumeSettable(const HalState& state, AudioObjectID device) {
  return facts(state, device).hasSettableVolume;
}

Value readMute(const HalState& state, AudioObjectID device, Scope, Bytes) {
  const auto& muted = facts(state, device).isMuted;
  return muted ? valueOf<std::uint32_t>(*muted ? 1 : 0) : std::nullopt;
}

OSStatus writeMute(HalState& state, AudioObjectID device, Scope, Bytes bytes) {
  return writeInto<std::uint32_t>(*state.devices.at(device).facts.isMuted, bytes);
}

OSStatus writeBufferFrames(HalState& state, AudioObjectID device, Scope, Bytes bytes) {
  SimulatedDevice& record = state.devices.at(device).facts;
  const auto frames = plainFrom<std::uint32_t>(bytes);
  if (!frames) {
    return kAudioHardwareBadPropertySizeError;
  }
  if (*frames < record.bufferFrameRange.mMinimum || *frames > record.bufferFrameRange.mMaximum) {
    return kAudioHardwareIllegalOperationError;
  }
  record.bufferFrames = *frames;
  return noErr;
}

Value readMembers(const HalState& state, AudioObjectID device, Scope, Bytes) {
  const auto& composition = state.devices.at(device).composition;
  if (!composition) {
    return std::nullopt;
  }
  std::vector<AudioObjectID> ids;
  for (const AggregateMember& member : composition->subDevices) {
    if (const auto id = state.deviceWithUID(member.uid); id != kAudioObjectUnknown) {
      ids.push_back(id);
    }
  }
  return valueOf(ids);
}

Value readMainMember(const HalState& state, AudioObjectID device, Scope, Bytes) {
  const auto& composition = state.devices.at(device).composition;
  return composition ? textOf(composition->mainUID) : std::nullopt;
}

constexpr std::size_t usageHead = offsetof(AudioHardwareIOProcStreamUsage, mStreamIsOn);

// The caller's buffer names the IO proc; without a buffer (a question of size) none is needed.
Value readUsage(const HalState& state, AudioObjectID device, Scope scope, Bytes given) {
  const HalDevice& record = state.devices.at(device);
  AudioHardwareIOProcStreamUsage head;
  const HalIOProc* proc = nullptr;
  if (given.size() >= sizeof head.mIOProc) {
    std::memcpy(&head.mIOProc, given.data(), sizeof head.mIOProc);
    const auto found = record.procs.find(head.mIOProc);
    if (found == record.procs.end()) {
      return std::nullopt;
    }
    proc = &found->second;
  }
  const auto streams = state.activeStreams(record, scope);
  head.mNumberStreams = static_cast<std::uint32_t>(streams.size());
  std::vector<std::byte> bytes(usageHead + streams.size() * sizeof(std::uint32_t));
  std::memcpy(bytes.data(), &head, usageHead);
  for (std::size_t i = 0; i < streams.size(); ++i) {
    const std::uint32_t isOn = proc && proc->streamsOff.contains(streams[i].id) ? 0 : 1;
    std::memcpy(bytes.data() + usageHead + i * sizeof isOn, &isOn, sizeof isOn);
  }
  return bytes;
}

OSStatus writeUsage(HalState& state, AudioObjectID device, Scope scope, Bytes bytes) {
  HalDevice& record = state.devices.at(device);
  AudioHardwareIOProcStreamUsage head;
  if (bytes.size() < usageHead) {
    return kAudioHardwareBadPropertySizeError;
  }
  std::memcpy(static_cast<void*>(&head), bytes.data(), usageHead);
  const auto streams = state.activeStreams(record, scope);
  const auto proc = record.procs.find(head.mIOProc);
  if (proc == record.procs.end()) {
    return kAudioHardwareIllegalOperationError;
  }
  if (head.mNumberStreams > streams.size() ||
      bytes.size() < usageHead + head.mNumberStreams * sizeof(std::uint32_t)) {
    return kAudioHardwareBadPropertySizeError;
  }
  for (std::size_t i = 0; i < head.mNumberStreams; ++i) {
    std::uint32_t isOn = 0;
    std::memcpy(&isOn, bytes.data() + usageHead + i * sizeof isOn, sizeof isOn);
    if (isOn != 0) {
      proc->second.streamsOff.erase(streams[i].id);
    } else {
      proc->second.streamsOff.insert(streams[i].id);
    }
  }
  return noErr;
}

constexpr auto table = std::to_array<HalProperty>({
    {Owner::system, kAudioHardwarePropertyDevices, global,
     [](const HalState& state, AudioObjectID, Scope, Bytes) {
       return valueOf(keysOf(state.devices));
     }},
    {Owner::system, kAudioHardwarePropertyProcessObjectList, global,
     [](const HalState& state, AudioObjectID, Scope, Bytes) {
       return valueOf(keysOf(state.processes));
     }},
    {Owner::system, kAudioHardwarePropertyDefaultOutputDevice, global, readDefault, setDefault},
    {Owner::system, kAudioHardwarePropertyDefaultSystemOutputDevice, global, readDefaultSystem,
     setDefaultSystem},
    {Owner::process, kAudioProcessPropertyPID, global,
     [](const HalState& state, AudioObjectID id, Scope, Bytes) {
       return valueOf(state.processes.at(id).pid);
     }},
    {Owner::process, kAudioProcessPropertyIsRunningOutput, global,
     [](const HalState& state, AudioObjectID id, Scope, Bytes) {
       return valueOf<std::uint32_t>(state.processes.at(id).isRunningOutput ? 1 : 0);
     }},
    {Owner::process, kAudioProcessPropertyDevices, output,
     [](const HalState& state, AudioObjectID id, Scope, Bytes) {
       return valueOf(state.processes.at(id).devices);
     }},
    {Owner::tap, kAudioTapPropertyFormat, global,
     [](const HalState& state, AudioObjectID id, Scope, Bytes) {
       return valueOf(state.taps.at(id).format);
     }},
    {Owner::device, kAudioDevicePropertyDeviceUID, global,
     [](const HalState& state, AudioObjectID id, Scope, Bytes) {
       return textOf(facts(state, id).uid);
     }},
    {Owner::device, kAudioObjectPropertyName, global,
     [](const HalState& state, AudioObjectID id, Scope, Bytes) {
       return textOf(facts(state, id).name);
     }},
    {Owner::device, kAudioDevicePropertyTransportType, global,
     [](const HalState& state, AudioObjectID id, Scope, Bytes) {
       return valueOf(facts(state, id).transport);
     }},
    {Owner::device, kAudioDevicePropertyIsHidden, global,
     [](const HalState& state, AudioObjectID id, Scope, Bytes) {
       return valueOf<std::uint32_t>(facts(state, id).isHidden ? 1 : 0);
     }},
    {Owner::device, kAudioDevicePropertyStreams, output, readStreams},
    {Owner::device, kAudioDevicePropertyStreams, input, readStreams},
    {Owner::device, kAudioDevicePropertyDataSource, output,
     [](const HalState& state, AudioObjectID id, Scope, Bytes) {
       return valueOf(facts(state, id).dataSource);
     }},
    {Owner::device, kAudioHardwareServiceDeviceProperty_VirtualMainVolume, output, readVolume,
     writeVolume, isVolumeSettable},
    {Owner::device, kAudioDevicePropertyVolumeScalar, output, readVolume, writeVolume,
     isVolumeSettable},
    {Owner::device, kAudioDevicePropertyMute, output, readMute, writeMute},
    {Owner::device, kAudioDevicePropertyNominalSampleRate, global,
     [](const HalState& state, AudioObjectID id, Scope, Bytes) {
       return valueOf(facts(state, id).nominalRate);
     },
     [](HalState& state, AudioObjectID id, Scope, Bytes bytes) {
       return writeInto<double>(state.devices.at(id).facts.nominalRate, bytes);
     }},
    {Owner::device, kAudioDevicePropertyBufferFrameSizeRange, global,
     [](const HalState& state, AudioObjectID id, Scope, Bytes) {
       return valueOf(facts(state, id).bufferFrameRange);
     }},
    {Owner::device, kAudioDevicePropertyBufferFrameSize, global,
     [](const HalState& state, AudioObjectID id, Scope, Bytes) {
       return valueOf(facts(state, id).bufferFrames);
     },
     writeBufferFrames},
    {Owner::device, kAudioDevicePropertyLatency, output,
     [](const HalState& state, AudioObjectID id, Scope, Bytes) {
       return valueOf(facts(state, id).outputLatency);
     }},
    {Owner::device, kAudioDevicePropertyLatency, input,
     [](const HalState& state, AudioObjectID id, Scope, Bytes) {
       return valueOf(facts(state, id).inputLatency);
     }},
    {Owner::device, kAudioDevicePropertySafetyOffset, output,
     [](const HalState& state, AudioObjectID id, Scope, Bytes) {
       return valueOf(facts(state, id).outputSafetyOffset);
     }},
    {Owner::device, kAudioDevicePropertySafetyOffset, input,
     [](const HalState& state, AudioObjectID id, Scope, Bytes) {
       return valueOf(facts(state, id).inputSafetyOffset);
     }},
    {Owner::device, kAudioDevicePropertyIOProcStreamUsage, input, readUsage, writeUsage},
    {Owner::device, kAudioDevicePropertyIOProcStreamUsage, output, readUsage, writeUsage},
    {Owner::device, kAudioAggregateDevicePropertyActiveSubDeviceList, global, readMembers},
    {Owner::device, kAudioAggregateDevicePropertyMainSubDevice, global, readMainMember},
});

std::optional<HalProperty::Owner> ownerOf(const HalState& state, AudioObjectID object) {
  if (object == kAudioObjectSystemObject) {
    return Owner::system;
  }
  if (state.devices.contains(object)) {
    return Owner::device;
  }
  if (state.processes.contains(object)) {
    return Owner::process;
  }
  return state.taps.contains(object) ? std::optional(Owner::tap) : std::nullopt;
}

}  // namespace

const HalProperty* findHalProperty(const HalState& state, AudioObjectID object,
                                   const AudioObjectPropertyAddress& address) {
  const auto owner = ownerOf(state, object);
  if (!owner || address.mElement != kAudioObjectPropertyElementMain) {
    return nullptr;
  }
  const auto found = std::ranges::find_if(table, [&](const HalProperty& row) {
    return row.owner == *owner && row.selector == address.mSelector && row.scope == address.mScope;
  });
  return found == table.end() ? nullptr : &*found;
}

std::vector<std::pair<AudioObjectPropertyAddress, HalValue>> halValues(const HalState& state,
                                                                       AudioObjectID object) {
  std::vector<std::pair<AudioObjectPropertyAddress, HalValue>> values;
  const auto owner = ownerOf(state, object);
  for (const HalProperty& row : table) {
    if (owner != row.owner) {
      continue;
    }
    if (auto value = row.read(state, object, row.scope, {})) {
      values.emplace_back(
          AudioObjectPropertyAddress{row.selector, row.scope, kAudioObjectPropertyElementMain},
          std::move(*value));
    }
  }
  return values;
}

}  // namespace plemora
