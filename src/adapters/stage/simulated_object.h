#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/audio_constants.h"
#include "platform/audio_graph.h"

namespace plemora {

/// A sample at a frame since the start of the HAL, of one channel of the device played to.
using SampleSource = std::function<float(std::uint64_t frame, std::uint32_t channel)>;

/// Samples by channel and frame.
using Sound = std::vector<std::vector<float>>;

/// A device of the scene: all that a test or the stage says about it. Every stream is one buffer
/// of an IO cycle, its channels interleaved: {2} is stereo, {1, 1} planar stereo, {2, 2} two pairs.
struct SimulatedDevice {
  std::string uid{};
  std::optional<std::string> name{};
  FourCharCode transport = kAudioDeviceTransportTypeBuiltIn;
  std::vector<std::uint32_t> outputStreams{2};  ///< channels of each stream
  std::vector<std::uint32_t> inputStreams{};
  SampleSource inputSource{};                ///< what its inputs hear; silence without one
  std::optional<FourCharCode> dataSource{};  ///< none: the property is missing
  std::optional<float> volume = 1.0F;        ///< none: the property is missing
  bool hasSettableVolume = true;
  std::optional<bool> isMuted = false;  ///< none: the property is missing
  bool isHidden = false;
  double nominalRate = 48000;
  AudioValueRange bufferFrameRange{32, 4096};
  std::uint32_t bufferFrames = 512;
  std::uint32_t outputLatency = 0, outputSafetyOffset = 0;  ///< frames
  std::uint32_t inputLatency = 0, inputSafetyOffset = 0;
};

/// An audio process of the scene.
struct SimulatedProcess {
  std::int32_t pid = 0;
  bool isRunningOutput = true;
  std::vector<AudioObjectID> devices{};  ///< it plays the same to each
  SampleSource source{};                 ///< what it plays; silence without one
};

/// A stream of a device; in an aggregate, of one of its members.
struct HalStream {
  AudioObjectID id = 0;
  std::uint32_t channels = 0;
  std::string memberUID;           ///< of a device, or of a tap
  std::uint32_t firstChannel = 0;  ///< of the member, in this direction
  bool isTap = false;
};

struct HalIOProc {
  std::shared_ptr<SerialQueue> queue;
  AudioIOBlock block;
  bool isStarted = false;
  std::set<AudioObjectID> streamsOff;
};

struct HalDevice {
  SimulatedDevice facts;
  std::optional<AggregateDescription> composition;  ///< aggregates only
  bool isOurs = false;                              ///< made through AudioGraph
  std::vector<HalStream> inputs, outputs;
  std::map<AudioDeviceIOProcID, HalIOProc> procs;
  Sound heard;  ///< the last step, all channels
};

struct HalTap {
  TapDescription description;
  AudioStreamBasicDescription format;
  std::vector<std::uint32_t> buffers;  ///< channels of each buffer of an IO cycle
  Sound captured;                      ///< the last step
};

/// Everything that a simulated HAL knows. Guarded by its mutex.
struct HalState {
  std::map<AudioObjectID, HalDevice> devices;
  std::map<AudioObjectID, SimulatedProcess> processes;
  std::map<AudioObjectID, HalTap> taps;
  AudioObjectID defaultOutput = kAudioObjectUnknown;
  AudioObjectID defaultSystemOutput = kAudioObjectUnknown;
  std::vector<std::uint32_t> tapBuffers;  ///< how a tap's channels are cut; empty = one buffer
  AudioObjectID nextID = 40;              ///< never reused
  std::uint64_t frame = 0;

  AudioObjectID makeID() { return nextID++; }
  bool exists(AudioObjectID object) const;
  /// Unknown (0) when no device has that UID.
  AudioObjectID deviceWithUID(const std::string& uid) const;
  AudioObjectID tapWithUUID(const std::string& uuid) const;
  /// Those streams whose member is there.
  std::vector<HalStream> activeStreams(const HalDevice& device,
                                       AudioObjectPropertyScope scope) const;
  /// The first device that a user could mean as default output; unknown when there is none.
  AudioObjectID fallbackOutput() const;
};

}  // namespace plemora
