#include "adapters/linux/pipewire/pipewire_graph.h"

#include <algorithm>
#include <utility>

#include "platform/audio_constants.h"

namespace plemora {

namespace {

// The owner rebuilds its taps when the default sink changes: stop and start follow each other
// within the time that the news takes to reach it.
constexpr double rebuildWindowSeconds = 1.0;
constexpr double lingerSeconds = 0.25;

// Longer than the fade takes at the largest quantum; a server that hangs must not hang us.
constexpr double stopTimeoutSeconds = 1.0;

}  // namespace

OSStatus PipeWireGraph::createProcessTap(const TapDescription& description, AudioObjectID& tap) {
  const PipeWireLoop::Lock lock(connection_.loop());
  const auto& processes = connection_.objects().processes();
  const bool anyKnown =
      std::any_of(description.processes.begin(), description.processes.end(),
                  [&](AudioObjectID process) { return processes.contains(process); });
  if (!anyKnown) {
    return kAudioHardwareBadObjectError;
  }
  if (description.uuid.empty()) {
    return kAudioHardwareIllegalOperationError;
  }
  tap = connection_.objects().takeId();
  objects_.taps.emplace(tap, description);
  return noErr;
}

OSStatus PipeWireGraph::destroyProcessTap(AudioObjectID tap) {
  const PipeWireLoop::Lock lock(connection_.loop());
  return objects_.taps.erase(tap) > 0 ? noErr : kAudioHardwareBadObjectError;
}

OSStatus PipeWireGraph::createAggregateDevice(const AggregateDescription& description,
                                              AudioObjectID& device) {
  const PipeWireLoop::Lock lock(connection_.loop());
  if (connection_.objects().sinkOfUid(description.mainUID) == nullptr) {
    return kAudioHardwareBadDeviceError;
  }
  for (const AggregateMember& member : description.taps) {
    const bool isKnown =
        std::any_of(objects_.taps.begin(), objects_.taps.end(),
                    [&](const auto& tap) { return tap.second.uuid == member.uid; });
    if (!isKnown) {
      return kAudioHardwareBadObjectError;
    }
  }
  device = connection_.objects().takeId();
  objects_.aggregates[device].description = description;
  return noErr;
}

OSStatus PipeWireGraph::destroyAggregateDevice(AudioObjectID device) {
  const PipeWireLoop::Lock lock(connection_.loop());
  const auto found = objects_.aggregates.find(device);
  if (found == objects_.aggregates.end()) {
    return kAudioHardwareBadDeviceError;
  }
  for (auto& [id, record] : found->second.procs) {
    stopCorrection(*record);
  }
  objects_.aggregates.erase(device);
  return noErr;
}

OSStatus PipeWireGraph::createIOProc(AudioObjectID device, std::shared_ptr<SerialQueue>,
                                     AudioIOBlock block, AudioDeviceIOProcID& proc) {
  const PipeWireLoop::Lock lock(connection_.loop());
  const auto found = objects_.aggregates.find(device);
  if (found == objects_.aggregates.end()) {
    return kAudioHardwareBadDeviceError;
  }
  if (!block) {
    return kAudioHardwareIllegalOperationError;
  }
  auto record = std::make_unique<IOProcRecord>();
  record->block = std::move(block);
  proc = record.get();
  found->second.procs.emplace(proc, std::move(record));
  return noErr;
}

OSStatus PipeWireGraph::destroyIOProc(AudioObjectID device, AudioDeviceIOProcID proc) {
  const PipeWireLoop::Lock lock(connection_.loop());
  IOProcRecord* record = find(device, proc);
  if (record == nullptr) {
    return kAudioHardwareBadDeviceError;
  }
  stopCorrection(*record);
  // Looked up anew: the lock was given up while the fade was waited for.
  const auto found = objects_.aggregates.find(device);
  if (found != objects_.aggregates.end()) {
    found->second.procs.erase(proc);
  }
  return noErr;
}

OSStatus PipeWireGraph::start(AudioObjectID device, AudioDeviceIOProcID proc) {
  const PipeWireLoop::Lock lock(connection_.loop());
  IOProcRecord* record = find(device, proc);
  if (record == nullptr) {
    return kAudioHardwareBadDeviceError;
  }
  CorrectionEngine* engine = connection_.engine();
  if (engine == nullptr) {
    return kAudioHardwareUnspecifiedError;
  }
  if (record->connection == connection_.number()) {
    return noErr;
  }
  const AggregateDescription& description = objects_.aggregates.at(device).description;
  CorrectionRequest request;
  request.targetUid = description.mainUID;
  request.block = record->block;
  for (const AggregateMember& member : description.taps) {
    for (const auto& [id, tap] : objects_.taps) {
      if (tap.uuid == member.uid) {
        request.processes.insert(tap.processes.begin(), tap.processes.end());
      }
    }
  }
  record->correction = engine->start(std::move(request));
  record->connection = connection_.number();
  return noErr;
}

OSStatus PipeWireGraph::stop(AudioObjectID device, AudioDeviceIOProcID proc) {
  const PipeWireLoop::Lock lock(connection_.loop());
  IOProcRecord* record = find(device, proc);
  if (record == nullptr) {
    return kAudioHardwareBadDeviceError;
  }
  stopCorrection(*record);
  return noErr;
}

IOProcRecord* PipeWireGraph::find(AudioObjectID device, AudioDeviceIOProcID proc) {
  const auto aggregate = objects_.aggregates.find(device);
  if (aggregate == objects_.aggregates.end()) {
    return nullptr;
  }
  const auto record = aggregate->second.procs.find(proc);
  return record == aggregate->second.procs.end() ? nullptr : record->second.get();
}

void PipeWireGraph::stopCorrection(IOProcRecord& record) {
  const std::uint64_t connection = std::exchange(record.connection, 0);
  const std::uint64_t correction = std::exchange(record.correction, 0);
  const auto engine = [&] {
    return connection_.number() == connection ? connection_.engine() : nullptr;
  };
  if (connection == 0 || engine() == nullptr) {
    return;
  }
  const double now = PipeWireConnection::now();
  const bool lingers = now - connection_.defaultChangedAt() < rebuildWindowSeconds;
  engine()->stop(correction, lingers ? lingerSeconds : 0, now);
  while (!lingers && engine() != nullptr && !engine()->isGone(correction) &&
         PipeWireConnection::now() - now < stopTimeoutSeconds) {
    connection_.loop().wait(0.05);
  }
}

}  // namespace plemora
