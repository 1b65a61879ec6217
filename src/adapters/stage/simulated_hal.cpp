#include "adapters/stage/simulated_hal.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "adapters/stage/hal_properties.h"

namespace plemora {

namespace {

std::vector<HalStream> ownStreams(HalState& state, const std::string& uid,
                                  const std::vector<std::uint32_t>& channelCounts) {
  std::vector<HalStream> streams;
  std::uint32_t first = 0;
  for (const std::uint32_t channels : channelCounts) {
    streams.push_back({state.makeID(), channels, uid, first, false});
    first += channels;
  }
  return streams;
}

bool mentions(const HalDevice& device, const std::string& uid) {
  return device.composition && std::ranges::any_of(device.composition->subDevices,
                                                   [&](const auto& m) { return m.uid == uid; });
}

}  // namespace

SimulatedHal::SimulatedHal(MainQueue& main) : listeners_(std::make_shared<HalListeners>(main)) {}

SimulatedHal::~SimulatedHal() = default;

OSStatus SimulatedHal::change(std::vector<AudioObjectID> objects,
                              const std::function<OSStatus(HalState&)>& apply) {
  objects.push_back(kAudioObjectSystemObject);
  std::vector<std::pair<AudioObjectID, AudioObjectPropertyAddress>> changed;
  OSStatus status = noErr;
  {
    const std::lock_guard lock(mutex_);
    std::map<AudioObjectID, decltype(halValues(state_, 0))> before;
    for (const AudioObjectID object : objects) {
      before[object] = halValues(state_, object);
    }
    status = apply(state_);
    for (AudioObjectID* choice : {&state_.defaultOutput, &state_.defaultSystemOutput}) {
      if (!state_.devices.contains(*choice)) {
        *choice = state_.fallbackOutput();
      }
    }
    for (const auto& [object, oldValues] : before) {
      if (!state_.exists(object)) {
        continue;
      }
      const auto newValues = halValues(state_, object);
      // What changed, what appeared, and what is no longer there.
      for (const auto& entry : newValues) {
        if (std::ranges::find(oldValues, entry) == oldValues.end()) {
          changed.emplace_back(object, entry.first);
        }
      }
      for (const auto& [address, value] : oldValues) {
        if (std::ranges::find(newValues, address, [](const auto& e) { return e.first; }) ==
            newValues.end()) {
          changed.emplace_back(object, address);
        }
      }
    }
  }
  for (const auto& [object, address] : changed) {
    listeners_->notify(object, address);
  }
  return status;
}

AudioObjectID SimulatedHal::addDevice(SimulatedDevice device) {
  AudioObjectID id = kAudioObjectUnknown;
  change({}, [&](HalState& state) {
    id = state.makeID();
    HalDevice record;
    record.inputs = ownStreams(state, device.uid, device.inputStreams);
    record.outputs = ownStreams(state, device.uid, device.outputStreams);
    record.facts = std::move(device);
    state.devices.emplace(id, std::move(record));
    return noErr;
  });
  return id;
}

void SimulatedHal::removeDevice(AudioObjectID device) {
  std::vector<AudioObjectID> touched;
  {
    const std::lock_guard lock(mutex_);
    const auto found = state_.devices.find(device);
    if (found == state_.devices.end()) {
      return;
    }
    for (const auto& [id, other] : state_.devices) {
      if (mentions(other, found->second.facts.uid)) {
        touched.push_back(id);
      }
    }
    for (const auto& [id, process] : state_.processes) {
      if (std::ranges::find(process.devices, device) != process.devices.end()) {
        touched.push_back(id);
      }
    }
  }
  // What its IO procs hold is let go without the lock.
  decltype(state_.devices)::node_type removed;
  change(std::move(touched), [&](HalState& state) {
    removed = state.devices.extract(device);
    for (auto& [id, process] : state.processes) {
      std::erase(process.devices, device);
    }
    return noErr;
  });
}

void SimulatedHal::updateDevice(AudioObjectID device,
                                const std::function<void(SimulatedDevice&)>& update) {
  change({device}, [&](HalState& state) {
    update(state.devices.at(device).facts);
    return noErr;
  });
}

SimulatedDevice SimulatedHal::device(AudioObjectID device) const {
  const std::lock_guard lock(mutex_);
  return state_.devices.at(device).facts;
}

AudioObjectID SimulatedHal::addProcess(SimulatedProcess process) {
  AudioObjectID id = kAudioObjectUnknown;
  change({}, [&](HalState& state) {
    id = state.makeID();
    state.processes.emplace(id, std::move(process));
    return noErr;
  });
  return id;
}

void SimulatedHal::removeProcess(AudioObjectID process) {
  change({}, [&](HalState& state) {
    state.processes.erase(process);
    return noErr;
  });
}

void SimulatedHal::updateProcess(AudioObjectID process,
                                 const std::function<void(SimulatedProcess&)>& update) {
  change({process}, [&](HalState& state) {
    update(state.processes.at(process));
    return noErr;
  });
}

void SimulatedHal::setDefaultOutput(AudioObjectID device) {
  change({}, [&](HalState& state) {
    state.defaultOutput = device;
    return noErr;
  });
}

AudioObjectID SimulatedHal::defaultOutput() const {
  const std::lock_guard lock(mutex_);
  return state_.defaultOutput;
}

void SimulatedHal::notify(AudioObjectID object, const AudioObjectPropertyAddress& address,
                          int times) {
  for (int i = 0; i < times; ++i) {
    listeners_->notify(object, address);
  }
}

OSStatus SimulatedHal::dataSize(AudioObjectID object, const AudioObjectPropertyAddress& address,
                                std::size_t& size) {
  const auto verdict = faults_.enter(HalCall::dataSize, object, address.mSelector);
  if (verdict.status != noErr || verdict.yieldsNothing) {
    size = verdict.yieldsNothing ? 0 : size;
    return verdict.status;
  }
  HalValue value;
  const OSStatus status = read(object, address, {}, value);
  if (status == noErr) {
    const auto* bytes = std::get_if<std::vector<std::byte>>(&value);
    size = bytes ? bytes->size() : sizeof(void*);
  }
  return status;
}

OSStatus SimulatedHal::data(AudioObjectID object, const AudioObjectPropertyAddress& address,
                            std::size_t& size, void* value) {
  const auto verdict = faults_.enter(HalCall::data, object, address.mSelector);
  if (verdict.status != noErr || verdict.yieldsNothing) {
    size = verdict.yieldsNothing ? 0 : size;
    return verdict.status;
  }
  HalValue result;
  const OSStatus status =
      read(object, address, {static_cast<const std::byte*>(value), size}, result);
  if (status != noErr) {
    return status;
  }
  const auto* bytes = std::get_if<std::vector<std::byte>>(&result);
  if (!bytes) {
    return kAudioHardwareBadPropertySizeError;
  }
  size = std::min(size, bytes->size());
  if (size > 0) {
    std::memcpy(value, bytes->data(), size);
  }
  return noErr;
}

OSStatus SimulatedHal::string(AudioObjectID object, const AudioObjectPropertyAddress& address,
                              std::optional<std::string>& value) {
  const auto verdict = faults_.enter(HalCall::string, object, address.mSelector);
  if (verdict.status != noErr || verdict.yieldsNothing) {
    return verdict.status;
  }
  HalValue result;
  const OSStatus status = read(object, address, {}, result);
  if (status != noErr) {
    return status;
  }
  const auto* text = std::get_if<std::optional<std::string>>(&result);
  if (!text) {
    return kAudioHardwareBadPropertySizeError;
  }
  if (*text) {
    value = *text;
  }
  return noErr;
}

OSStatus SimulatedHal::read(AudioObjectID object, const AudioObjectPropertyAddress& address,
                            std::span<const std::byte> given, HalValue& value) const {
  const std::lock_guard lock(mutex_);
  if (!state_.exists(object)) {
    return kAudioHardwareBadObjectError;
  }
  const HalProperty* property = findHalProperty(state_, object, address);
  auto result = property ? property->read(state_, object, address.mScope, given) : std::nullopt;
  if (!result) {
    return kAudioHardwareUnknownPropertyError;
  }
  value = std::move(*result);
  return noErr;
}

OSStatus SimulatedHal::setData(AudioObjectID object, const AudioObjectPropertyAddress& address,
                               std::size_t size, const void* value) {
  const auto verdict = faults_.enter(HalCall::setData, object, address.mSelector);
  if (verdict.status != noErr || verdict.yieldsNothing) {
    return verdict.status;
  }
  return change({object}, [&](HalState& state) {
    if (!state.exists(object)) {
      return kAudioHardwareBadObjectError;
    }
    const HalProperty* property = findHalProperty(state, object, address);
    if (!property || !property->read(state, object, address.mScope, {})) {
      return kAudioHardwareUnknownPropertyError;
    }
    if (!property->write || (property->isSettable && !property->isSettable(state, object))) {
      return kAudioHardwareUnsupportedOperationError;
    }
    return property->write(state, object, address.mScope,
                           {static_cast<const std::byte*>(value), size});
  });
}

std::optional<bool> SimulatedHal::isSettable(AudioObjectID object,
                                             const AudioObjectPropertyAddress& address) {
  const auto verdict = faults_.enter(HalCall::isSettable, object, address.mSelector);
  if (verdict.status != noErr || verdict.yieldsNothing) {
    return std::nullopt;
  }
  const std::lock_guard lock(mutex_);
  const HalProperty* property = findHalProperty(state_, object, address);
  if (!property || !property->read(state_, object, address.mScope, {})) {
    return std::nullopt;
  }
  return property->write && (!property->isSettable || property->isSettable(state_, object));
}

OSStatus SimulatedHal::addListener(AudioObjectID object, const AudioObjectPropertyAddress& address,
                                   std::weak_ptr<AudioListenerBlock> block) {
  const auto verdict = faults_.enter(HalCall::addListener, object, address.mSelector);
  if (verdict.status != noErr) {
    return verdict.status;
  }
  {
    const std::lock_guard lock(mutex_);
    if (!state_.exists(object)) {
      return kAudioHardwareBadObjectError;
    }
  }
  listeners_->add(object, address, std::move(block));
  return noErr;
}

OSStatus SimulatedHal::removeListener(AudioObjectID object,
                                      const AudioObjectPropertyAddress& address,
                                      const std::shared_ptr<AudioListenerBlock>& block) {
  const auto verdict = faults_.enter(HalCall::removeListener, object, address.mSelector);
  const bool wasRegistered = listeners_->remove(object, address, block);
  if (verdict.status != noErr) {
    return verdict.status;
  }
  return wasRegistered ? noErr : kAudioHardwareIllegalOperationError;
}

}  // namespace plemora
