#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/audio_types.h"
#include "platform/serial_queue.h"

namespace plemora {

enum class TapMuteBehavior { unmuted = 0, muted = 1, mutedWhenTapped = 2 };

/// What a process tap captures. Corresponds to CATapDescription.
struct TapDescription {
  std::vector<AudioObjectID> processes;  ///< process objects of one app
  std::string deviceUID;                 ///< device that the app plays to
  int stream = 0;                        ///< index of the device's stream
  std::string uuid;                      ///< unique; an aggregate device names the tap by it
  std::string name;
  bool isPrivate = false;  ///< invisible to other programs
  TapMuteBehavior muteBehavior = TapMuteBehavior::unmuted;
};

/// A member of an aggregate device: a device, or a tap, by its UID. Keys "uid" and "drift".
struct AggregateMember {
  std::string uid;
  bool drift = false;  ///< corrected towards the clock of the main device
};

/// A composition of devices and taps. The comments name the keys of the HAL's dictionary.
struct AggregateDescription {
  std::string name;                         ///< "name"
  std::string uid;                          ///< "uid"
  std::string mainUID;                      ///< "master"
  std::string clockUID;                     ///< "clock"
  bool isPrivate = false;                   ///< "private"
  bool isStacked = false;                   ///< "stacked"
  bool tapAutoStart = false;                ///< "tapautostart"
  std::vector<AggregateMember> subDevices;  ///< "subdevices"
  std::vector<AggregateMember> taps;        ///< "taps"
};

/// One IO cycle: reads the input buffers, writes every output buffer. Runs on the device's
/// real-time thread: it must not lock, allocate, log or call into the system.
using AudioIOBlock = std::function<void(AudioBufferList input, AudioBufferList output)>;

/// Taps, aggregate devices and IO procs. Called from the taps queue; calls may block for a few
/// round trips. Nothing throws; what fails returns a status and stores nothing. Ids are never 0.
class AudioGraph {
 public:
  virtual ~AudioGraph() = default;

  virtual OSStatus createProcessTap(const TapDescription& description, AudioObjectID& tap) = 0;
  virtual OSStatus destroyProcessTap(AudioObjectID tap) = 0;

  virtual OSStatus createAggregateDevice(const AggregateDescription& description,
                                         AudioObjectID& device) = 0;
  virtual OSStatus destroyAggregateDevice(AudioObjectID device) = 0;

  /// The input list of the block holds the input streams of the sub-devices first and those of
  /// the taps after them. The queue names where the block runs on platforms that run IO procs on
  /// queues; others run it on their own real-time thread.
  virtual OSStatus createIOProc(AudioObjectID device, std::shared_ptr<SerialQueue> queue,
                                AudioIOBlock block, AudioDeviceIOProcID& proc) = 0;
  /// The block is let go of once the adapter has faded it out, at the latest a quarter of a second
  /// later: it must own whatever it uses.
  virtual OSStatus destroyIOProc(AudioObjectID device, AudioDeviceIOProcID proc) = 0;

  virtual OSStatus start(AudioObjectID device, AudioDeviceIOProcID proc) = 0;
  virtual OSStatus stop(AudioObjectID device, AudioDeviceIOProcID proc) = 0;
};

}  // namespace plemora
