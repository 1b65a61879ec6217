#include <algorithm>
#include <utility>

#include "adapters/stage/simulated_hal.h"

namespace plemora {

namespace {

// The streams of a composition: those of its devices in their order, then those of its taps.
void composeStreams(HalState& state, HalDevice& aggregate) {
  const auto adopt = [&](std::vector<HalStream>& into, const std::vector<HalStream>& from) {
    for (HalStream stream : from) {
      stream.id = state.makeID();
      into.push_back(std::move(stream));
    }
  };
  for (const AggregateMember& member : aggregate.composition->subDevices) {
    const HalDevice& device = state.devices.at(state.deviceWithUID(member.uid));
    adopt(aggregate.inputs, device.inputs);
    adopt(aggregate.outputs, device.outputs);
  }
  for (const AggregateMember& member : aggregate.composition->taps) {
    const HalTap& tap = state.taps.at(state.tapWithUUID(member.uid));
    aggregate.inputs.push_back({state.makeID(), tap.format.mChannelsPerFrame, member.uid, 0, true});
  }
}

OSStatus checkComposition(const HalState& state, const AggregateDescription& description) {
  if (description.uid.empty() || description.subDevices.empty() ||
      state.deviceWithUID(description.uid) != kAudioObjectUnknown) {
    return kAudioHardwareIllegalOperationError;
  }
  bool hasMain = false;
  for (const AggregateMember& member : description.subDevices) {
    const auto id = state.deviceWithUID(member.uid);
    if (id == kAudioObjectUnknown) {
      return kAudioHardwareBadDeviceError;
    }
    if (state.devices.at(id).composition) {
      return kAudioHardwareIllegalOperationError;  // aggregates do not nest
    }
    hasMain = hasMain || member.uid == description.mainUID;
  }
  for (const AggregateMember& member : description.taps) {
    if (state.tapWithUUID(member.uid) == kAudioObjectUnknown) {
      return kAudioHardwareBadObjectError;
    }
  }
  return hasMain ? noErr : kAudioHardwareIllegalOperationError;
}

AudioStreamBasicDescription floatFormat(double rate, std::uint32_t channels) {
  AudioStreamBasicDescription format;
  format.mSampleRate = rate;
  format.mFormatID = fourCharCode("lpcm");
  format.mFormatFlags = 1 | 8;  // float, packed
  format.mFramesPerPacket = 1;
  format.mChannelsPerFrame = channels;
  format.mBitsPerChannel = 32;
  format.mBytesPerFrame = format.mBytesPerPacket = channels * 4;
  return format;
}

HalIOProc* findProc(HalState& state, AudioObjectID device, AudioDeviceIOProcID proc) {
  const auto found = state.devices.find(device);
  if (found == state.devices.end()) {
    return nullptr;
  }
  const auto entry = found->second.procs.find(proc);
  return entry == found->second.procs.end() ? nullptr : &entry->second;
}

}  // namespace

AudioObjectID SimulatedHal::addAggregate(SimulatedDevice facts,
                                         const std::vector<std::string>& memberUIDs,
                                         const std::string& mainUID, bool isStacked) {
  AudioObjectID id = kAudioObjectUnknown;
  change({}, [&](HalState& state) {
    HalDevice record;
    record.composition.emplace();
    record.composition->uid = facts.uid;
    record.composition->mainUID = mainUID;
    record.composition->isStacked = isStacked;
    for (const std::string& uid : memberUIDs) {
      record.composition->subDevices.push_back({uid, uid != mainUID});
    }
    record.facts = std::move(facts);
    record.facts.transport = kAudioDeviceTransportTypeAggregate;
    id = state.makeID();
    composeStreams(state, record);
    state.devices.emplace(id, std::move(record));
    return noErr;
  });
  return id;
}

void SimulatedHal::setTapBuffers(std::vector<std::uint32_t> channels) {
  const std::lock_guard lock(mutex_);
  state_.tapBuffers = std::move(channels);
}

OSStatus SimulatedHal::createProcessTap(const TapDescription& description, AudioObjectID& tap) {
  const auto verdict = faults_.enter(HalCall::createTap, kAudioObjectSystemObject);
  if (verdict.status != noErr || verdict.yieldsNothing) {
    return verdict.status;
  }
  const std::lock_guard lock(mutex_);
  const auto device = state_.devices.find(state_.deviceWithUID(description.deviceUID));
  if (device == state_.devices.end()) {
    return kAudioHardwareBadDeviceError;
  }
  const auto& streams = device->second.outputs;
  if (description.stream < 0 || static_cast<std::size_t>(description.stream) >= streams.size() ||
      description.uuid.empty() || state_.tapWithUUID(description.uuid) != kAudioObjectUnknown) {
    return kAudioHardwareIllegalOperationError;
  }
  for (const AudioObjectID process : description.processes) {
    if (!state_.processes.contains(process)) {
      return kAudioHardwareBadObjectError;
    }
  }
  HalTap record;
  record.description = description;
  record.buffers = state_.tapBuffers;
  if (record.buffers.empty()) {
    record.buffers = {streams[static_cast<std::size_t>(description.stream)].channels};
  }
  std::uint32_t channels = 0;
  for (const std::uint32_t count : record.buffers) {
    channels += std::max(count, 1U);
  }
  record.format = floatFormat(device->second.facts.nominalRate, channels);
  tap = state_.makeID();
  state_.taps.emplace(tap, std::move(record));
  return noErr;
}

OSStatus SimulatedHal::destroyProcessTap(AudioObjectID tap) {
  const auto verdict = faults_.enter(HalCall::destroyTap, tap);
  if (verdict.status != noErr) {
    return verdict.status;
  }
  const std::lock_guard lock(mutex_);
  return state_.taps.erase(tap) == 1 ? noErr : kAudioHardwareBadObjectError;
}

OSStatus SimulatedHal::createAggregateDevice(const AggregateDescription& description,
                                             AudioObjectID& device) {
  const auto verdict = faults_.enter(HalCall::createAggregate, kAudioObjectSystemObject);
  if (verdict.status != noErr || verdict.yieldsNothing) {
    return verdict.status;
  }
  return change({}, [&](HalState& state) {
    if (const OSStatus status = checkComposition(state, description); status != noErr) {
      return status;
    }
    // Clock, buffer and delays are those of the main device.
    HalDevice record;
    record.facts = state.devices.at(state.deviceWithUID(description.mainUID)).facts;
    record.facts.uid = description.uid;
    record.facts.name = description.name;
    record.facts.transport = kAudioDeviceTransportTypeAggregate;
    record.facts.volume.reset();
    record.facts.isMuted.reset();
    record.facts.dataSource.reset();
    record.facts.isHidden = false;
    record.composition = description;
    record.isOurs = true;
    composeStreams(state, record);
    const AudioObjectID id = state.makeID();
    state.devices.emplace(id, std::move(record));
    device = id;
    return noErr;
  });
}

OSStatus SimulatedHal::destroyAggregateDevice(AudioObjectID device) {
  const auto verdict = faults_.enter(HalCall::destroyAggregate, device);
  if (verdict.status != noErr) {
    return verdict.status;
  }
  {
    const std::lock_guard lock(mutex_);
    const auto found = state_.devices.find(device);
    if (found == state_.devices.end() || !found->second.composition) {
      return kAudioHardwareBadDeviceError;
    }
  }
  removeDevice(device);
  return noErr;
}

OSStatus SimulatedHal::createIOProc(AudioObjectID device, std::shared_ptr<SerialQueue> queue,
                                    AudioIOBlock block, AudioDeviceIOProcID& proc) {
  const auto verdict = faults_.enter(HalCall::createIOProc, device);
  if (verdict.status != noErr || verdict.yieldsNothing) {
    return verdict.status;
  }
  const std::lock_guard lock(mutex_);
  const auto found = state_.devices.find(device);
  if (found == state_.devices.end()) {
    return kAudioHardwareBadDeviceError;
  }
  proc = reinterpret_cast<AudioDeviceIOProcID>(nextProc_++);
  found->second.procs[proc] = {std::move(queue), std::move(block), false, {}};
  return noErr;
}

OSStatus SimulatedHal::destroyIOProc(AudioObjectID device, AudioDeviceIOProcID proc) {
  const auto verdict = faults_.enter(HalCall::destroyIOProc, device);
  if (verdict.status != noErr) {
    return verdict.status;
  }
  // What the block holds is let go without the lock: it may end up in a call of this object.
  HalIOProc removed;
  const std::lock_guard lock(mutex_);
  HalIOProc* found = findProc(state_, device, proc);
  if (!found) {
    return kAudioHardwareBadDeviceError;
  }
  removed = std::move(*found);
  state_.devices.at(device).procs.erase(proc);
  return noErr;
}

OSStatus SimulatedHal::start(AudioObjectID device, AudioDeviceIOProcID proc) {
  const auto verdict = faults_.enter(HalCall::start, device);
  return verdict.status != noErr ? verdict.status : setRunning(device, proc, true);
}

OSStatus SimulatedHal::stop(AudioObjectID device, AudioDeviceIOProcID proc) {
  const auto verdict = faults_.enter(HalCall::stop, device);
  return verdict.status != noErr ? verdict.status : setRunning(device, proc, false);
}

OSStatus SimulatedHal::setRunning(AudioObjectID device, AudioDeviceIOProcID proc, bool isRunning) {
  const std::lock_guard lock(mutex_);
  HalIOProc* found = findProc(state_, device, proc);
  if (!found) {
    return kAudioHardwareBadDeviceError;
  }
  found->isStarted = isRunning;
  return noErr;
}

std::vector<TapDescription> SimulatedHal::liveTaps() const {
  const std::lock_guard lock(mutex_);
  std::vector<TapDescription> result;
  for (const auto& [id, tap] : state_.taps) {
    result.push_back(tap.description);
  }
  return result;
}

std::vector<AggregateDescription> SimulatedHal::liveAggregates() const {
  const std::lock_guard lock(mutex_);
  std::vector<AggregateDescription> result;
  for (const auto& [id, device] : state_.devices) {
    if (device.isOurs) {
      result.push_back(*device.composition);
    }
  }
  return result;
}

std::vector<AudioObjectID> SimulatedHal::liveAggregateIDs() const {
  const std::lock_guard lock(mutex_);
  std::vector<AudioObjectID> result;
  for (const auto& [id, device] : state_.devices) {
    if (device.isOurs) {
      result.push_back(id);
    }
  }
  return result;
}

int SimulatedHal::liveProcs() const {
  const std::lock_guard lock(mutex_);
  std::size_t count = 0;
  for (const auto& [id, device] : state_.devices) {
    count += device.procs.size();
  }
  return static_cast<int>(count);
}

int SimulatedHal::runningProcs() const {
  const std::lock_guard lock(mutex_);
  std::ptrdiff_t count = 0;
  for (const auto& [id, device] : state_.devices) {
    count += std::ranges::count_if(device.procs,
                                   [](const auto& entry) { return entry.second.isStarted; });
  }
  return static_cast<int>(count);
}

}  // namespace plemora
