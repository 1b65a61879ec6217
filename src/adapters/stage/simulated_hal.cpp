#include "adapters/stage/simulated_hal.h"

#include <algorithm>
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

}  // namespace plemora
