#include "adapters/linux/pipewire/audio_objects.h"

#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <utility>

#include "adapters/linux/desktop/client_directory.h"
#include "adapters/linux/pipewire/client_identity.h"
#include "adapters/linux/pipewire/sink_identity.h"

namespace plemora {

namespace {

constexpr auto globalScope = kAudioObjectPropertyScopeGlobal;
constexpr auto outputScope = kAudioObjectPropertyScopeOutput;

bool isAlive(std::int32_t pid) {
  return kill(pid, 0) == 0 || errno == EPERM;
}

template <typename Objects>
std::vector<AudioObjectID> idsOf(const Objects& objects) {
  std::vector<AudioObjectID> ids;
  for (const auto& [id, object] : objects) {
    ids.push_back(id);
  }
  return ids;
}

class Changes {
 public:
  template <typename Value>
  void compare(AudioObjectID object, FourCharCode selector, FourCharCode scope, const Value& before,
               const Value& after) {
    if (!(before == after)) {
      add(object, selector, scope);
    }
  }
  void add(AudioObjectID object, FourCharCode selector, FourCharCode scope) {
    list.push_back({object, {selector, scope, kAudioObjectPropertyElementMain}});
  }
  std::vector<ObjectChange> list;
};

void compareSinks(const SinkObject& before, const SinkObject& after, Changes& changes) {
  changes.compare(after.id, kAudioObjectPropertyName, globalScope, before.name, after.name);
  changes.compare(after.id, kAudioDevicePropertyTransportType, globalScope, before.transport,
                  after.transport);
  changes.compare(after.id, kAudioDevicePropertyDataSource, outputScope, before.dataSource,
                  after.dataSource);
  changes.compare(after.id, kAudioDevicePropertyIsHidden, globalScope, before.isHidden,
                  after.isHidden);
  changes.compare(after.id, kAudioDevicePropertyNominalSampleRate, globalScope, before.sampleRate,
                  after.sampleRate);
  changes.compare(after.id, kAudioDevicePropertyBufferFrameSize, globalScope, before.bufferFrames,
                  after.bufferFrames);
  if (before.volume != after.volume) {
    changes.add(after.id, kAudioHardwareServiceDeviceProperty_VirtualMainVolume, outputScope);
    changes.add(after.id, kAudioDevicePropertyVolumeScalar, outputScope);
    changes.compare(after.id, kAudioDevicePropertyMute, outputScope,
                    before.volume && before.volume->muted, after.volume && after.volume->muted);
  }
}

}  // namespace

std::vector<ObjectChange> AudioObjects::update(const GraphMirror* mirror, double now) {
  const auto sinksBefore = sinks_;
  const auto processesBefore = processes_;
  const auto defaultBefore = defaultSink_;
  if (mirror != nullptr) {
    updateSinks(*mirror);
    updateProcesses(*mirror, now);
  } else {
    sinks_.clear();
    clientPids_.clear();
    defaultSink_ = 0;
    for (auto& [id, process] : processes_) {
      directory_.erase(process.pid);
    }
    processes_.clear();
    hasWaiting_ = false;
  }

  Changes changes;
  const auto system = kAudioObjectSystemObject;
  changes.compare(system, kAudioHardwarePropertyDevices, globalScope, idsOf(sinksBefore),
                  idsOf(sinks_));
  changes.compare(system, kAudioHardwarePropertyDefaultOutputDevice, globalScope, defaultBefore,
                  defaultSink_);
  changes.compare(system, kAudioHardwarePropertyDefaultSystemOutputDevice, globalScope,
                  defaultBefore, defaultSink_);
  changes.compare(system, kAudioHardwarePropertyProcessObjectList, globalScope,
                  idsOf(processesBefore), idsOf(processes_));
  for (const auto& [id, sink] : sinks_) {
    if (const auto before = sinksBefore.find(id); before != sinksBefore.end()) {
      compareSinks(before->second, sink, changes);
    }
  }
  for (const auto& [id, process] : processes_) {
    if (const auto before = processesBefore.find(id); before != processesBefore.end()) {
      changes.compare(id, kAudioProcessPropertyIsRunningOutput, globalScope,
                      before->second.isRunning, process.isRunning);
      changes.compare(id, kAudioProcessPropertyDevices, outputScope, before->second.devices,
                      process.devices);
    }
  }
  return std::move(changes.list);
}

const SinkObject* AudioObjects::sinkOfUid(const std::string& uid) const {
  for (const auto& [id, sink] : sinks_) {
    if (sink.uid == uid) {
      return &sink;
    }
  }
  return nullptr;
}

void AudioObjects::updateSinks(const GraphMirror& mirror) {
  std::map<AudioObjectID, SinkObject> kept;
  for (const auto& [nodeId, node] : mirror.nodes()) {
    const std::string& uid = propertyOf(node.properties, "node.name");
    if (node.kind != NodeKind::sink || uid.empty() ||
        uid.starts_with("com.quorvane.mixer.correction")) {
      continue;
    }
    const auto known = std::find_if(sinks_.begin(), sinks_.end(), [&](const auto& entry) {
      return entry.second.nodeId == nodeId && entry.second.uid == uid;
    });
    SinkObject sink;
    sink.id = known != sinks_.end() ? known->second.id : takeId();
    sink.stream = known != sinks_.end() ? known->second.stream : takeId();
    sink.nodeId = nodeId;
    sink.uid = uid;
    for (const char* key : {"node.description", "node.nick", "node.name"}) {
      if (sink.name.empty()) {
        sink.name = propertyOf(node.properties, key);
      }
    }
    const std::uint32_t cardId = numberOf(node.properties, "device.id");
    const auto cardEntry = mirror.cards().find(cardId);
    const CardRecord* card = cardEntry != mirror.cards().end() ? &cardEntry->second : nullptr;
    const RouteRecord* route = routeOf(node.properties, card);
    sink.transport = transportOf(node.properties, card, route);
    sink.dataSource = dataSourceOf(route);
    sink.isHidden = isHiddenSink(node.properties);
    sink.sampleRate = numberOf(node.properties, "audio.rate");
    if (sink.sampleRate == 0) {
      sink.sampleRate = mirror.clockRate();
    }
    sink.bufferFrames = mirror.clockQuantum();
    sink.channels = numberOf(node.properties, "audio.channels");
    sink.volume = node.volume;
    if (route != nullptr && !route->volume.channelVolumes.empty()) {
      sink.volume = route->volume;
    }
    kept.emplace(sink.id, std::move(sink));
  }
  sinks_ = std::move(kept);
  const SinkObject* preferred = sinkOfUid(mirror.defaultSink());
  defaultSink_ = preferred != nullptr ? preferred->id : 0;
}

AudioObjectID AudioObjects::processOf(std::int32_t pid) {
  for (const auto& [id, process] : processes_) {
    if (process.pid == pid) {
      return id;
    }
  }
  const AudioObjectID id = takeId();
  processes_[id].id = id;
  processes_[id].pid = pid;
  return id;
}

void AudioObjects::placeStream(const GraphMirror& mirror, std::uint32_t nodeId,
                               const NodeRecord& node, double now) {
  const auto client = mirror.clients().find(node.clientId);
  if (client == mirror.clients().end()) {
    return;
  }
  // The full properties come a round trip later; a server under load may never send them. Then
  // what was announced has to do.
  if (!client->second.isComplete && now - client->second.since < gracePeriod) {
    isAwaiting_ = true;
    return;
  }
  auto pid = clientPids_.find(client->second.serial);
  if (pid == clientPids_.end()) {
    const auto identity = identifyClient(client->second.properties, node.properties, directory_);
    if (identity.pid < 1 || identity.pid == getpid()) {
      return;
    }
    directory_.set(identity.pid, identity.hints);
    pid = clientPids_.emplace(client->second.serial, identity.pid).first;
  }
  ProcessObject& process = processes_.at(processOf(pid->second));
  process.clients.insert(client->second.serial);
  process.streams.push_back(nodeId);
  process.isRunning = process.isRunning || node.isRunning;
}

void AudioObjects::updateProcesses(const GraphMirror& mirror, double now) {
  for (auto& [id, process] : processes_) {
    process.streams.clear();
    process.devices.clear();
    process.isRunning = false;
  }
  std::vector<std::pair<std::uint64_t, std::uint32_t>> streams;
  for (const auto& [nodeId, node] : mirror.nodes()) {
    if (node.kind == NodeKind::stream) {
      streams.emplace_back(node.serial, nodeId);
    }
  }
  std::sort(streams.begin(), streams.end());
  for (const auto& [serial, nodeId] : streams) {
    placeStream(mirror, nodeId, mirror.nodes().at(nodeId), now);
  }

  // A stream that is being moved has, for a moment, links to two sinks: the newer one counts.
  std::map<std::uint32_t, std::pair<std::uint64_t, std::uint32_t>> sinkOfStream;
  for (const auto& [linkId, link] : mirror.links()) {
    const auto node = mirror.nodes().find(link.inputNode);
    if (node != mirror.nodes().end() && node->second.kind == NodeKind::sink) {
      auto& newest = sinkOfStream[link.outputNode];
      newest = std::max(newest, {link.serial, link.inputNode});
    }
  }
  for (auto& [id, process] : processes_) {
    for (const std::uint32_t stream : process.streams) {
      const auto home = sinkOfStream.find(stream);
      if (home == sinkOfStream.end()) {
        continue;
      }
      for (const auto& [sinkId, sink] : sinks_) {
        if (sink.nodeId == home->second.second &&
            std::find(process.devices.begin(), process.devices.end(), sinkId) ==
                process.devices.end()) {
          process.devices.push_back(sinkId);
        }
      }
    }
  }
  dropProcesses(mirror, now);
}

void AudioObjects::dropProcesses(const GraphMirror& mirror, double now) {
  std::set<std::uint64_t> present;
  for (const auto& [id, client] : mirror.clients()) {
    present.insert(client.serial);
  }
  std::erase_if(clientPids_, [&](const auto& entry) { return !present.contains(entry.first); });
  hasWaiting_ = std::exchange(isAwaiting_, false);
  for (auto entry = processes_.begin(); entry != processes_.end();) {
    ProcessObject& process = entry->second;
    std::erase_if(process.clients, [&](std::uint64_t serial) { return !present.contains(serial); });
    if (!process.clients.empty()) {
      process.emptySince = 0;
      ++entry;
      continue;
    }
    if (process.emptySince == 0) {
      process.emptySince = now;
    }
    const bool mayReturn = !ClientDirectory::isSynthetic(process.pid) && isAlive(process.pid) &&
                           now - process.emptySince < gracePeriod;
    if (mayReturn) {
      hasWaiting_ = true;
      ++entry;
    } else {
      directory_.erase(process.pid);
      entry = processes_.erase(entry);
    }
  }
}

}  // namespace plemora
