#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "adapters/linux/pipewire/graph_mirror.h"
#include "platform/audio_constants.h"

namespace plemora {

class ClientDirectory;

/// A sink as a device.
struct SinkObject {
  AudioObjectID id = 0;
  AudioObjectID stream = 0;  ///< its one output stream
  std::uint32_t nodeId = 0;
  std::string uid;  ///< "node.name"
  std::string name;
  FourCharCode transport = 0;
  std::optional<FourCharCode> dataSource;
  bool isHidden = false;
  std::uint32_t sampleRate = 0;    ///< frames per second; 0 = unknown
  std::uint32_t bufferFrames = 0;  ///< frames per cycle; 0 = unknown
  std::uint32_t channels = 0;
  std::optional<VolumeState> volume;
};

/// A client process that plays as a process object. It lasts as long as one of its connections
/// that has had an output stream, and a moment longer while the process lives, so that a player
/// that opens its stream anew stays the same object.
struct ProcessObject {
  AudioObjectID id = 0;
  std::int32_t pid = -1;
  bool isRunning = false;
  std::vector<AudioObjectID> devices;  ///< that its streams are linked to, oldest stream first
  std::vector<std::uint32_t> streams;  ///< node ids, oldest first
  std::set<std::uint64_t> clients;     ///< serials of its connections
  double emptySince = 0;               ///< media time; counts while it has no connection
};

/// A property that has changed.
struct ObjectChange {
  AudioObjectID object;
  AudioObjectPropertyAddress address;
  bool operator==(const ObjectChange&) const = default;
};

/// The server's graph as audio objects. Ids are never used twice. With the loop's lock held.
class AudioObjects {
 public:
  /// How long a process without a connection is kept while it lives.
  static constexpr double gracePeriod = 2.0;

  explicit AudioObjects(ClientDirectory& directory) : directory_(directory) {}

  /// Takes over what the mirror holds (null: no server, nothing is left) and returns what has
  /// changed. now: media time in seconds.
  std::vector<ObjectChange> update(const GraphMirror* mirror, double now);

  /// Whether something waits for the grace period to end: update is due again after it.
  bool hasWaiting() const { return hasWaiting_; }

  AudioObjectID takeId() { return nextId_++; }

  const std::map<AudioObjectID, SinkObject>& sinks() const { return sinks_; }
  const std::map<AudioObjectID, ProcessObject>& processes() const { return processes_; }
  const SinkObject* sinkOfUid(const std::string& uid) const;
  AudioObjectID defaultSink() const { return defaultSink_; }

 private:
  void updateSinks(const GraphMirror& mirror);
  void updateProcesses(const GraphMirror& mirror, double now);
  void placeStream(const GraphMirror& mirror, std::uint32_t nodeId, const NodeRecord& node,
                   double now);
  AudioObjectID processOf(std::int32_t pid);
  void dropProcesses(const GraphMirror& mirror, double now);

  ClientDirectory& directory_;
  AudioObjectID nextId_ = 100;
  std::map<AudioObjectID, SinkObject> sinks_;
  std::map<AudioObjectID, ProcessObject> processes_;
  std::map<std::uint64_t, std::int32_t> clientPids_;  ///< by serial, of those with streams
  AudioObjectID defaultSink_ = 0;
  bool hasWaiting_ = false;
  bool isAwaiting_ = false;  ///< a client's properties, in this update
};

}  // namespace plemora
