#include "audio/app_tap.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <set>
#include <utility>

#include "audio/objects/audio_object.h"
#include "audio/objects/private_devices.h"
#include "audio/render/render.h"
#include "audio/tap_latency.h"
#include "base/log.h"

namespace plemora {

namespace {

constexpr Logger logger("taps");

/// Frames per buffer that keep the delay of the extra hop low.
constexpr double smallBuffer = 64;

std::string status(OSStatus code) {
  return std::to_string(code);
}

}  // namespace

bool TapDesign::sameTap(const TapDesign& other) const {
  return outputUID == other.outputUID && sourceUID == other.sourceUID &&
         std::set(processObjects.begin(), processObjects.end()) ==
             std::set(other.processObjects.begin(), other.processObjects.end());
}

AppTap::AppTap(AudioProperties& properties, AudioGraph& graph, Clock& clock, TapDesign design,
               std::shared_ptr<SerialQueue> queue, std::shared_ptr<RenderState> state)
    : properties_(properties),
      graph_(graph),
      clock_(clock),
      design_(std::move(design)),
      queue_(std::move(queue)),
      state_(std::move(state)) {}

bool AppTap::start(AudioObjectID outputDevice) {
  std::string tapUUID;
  if (!createTap(tapUUID)) {
    return false;
  }
  const auto playback = playbackDevices(properties_, outputDevice, design_.outputUID);
  if (!createAggregate(tapUUID, playback)) {
    return false;
  }
  // The aggregate device presents the input streams of its members before the tap's.
  std::size_t inputStreams = 0;
  for (const AudioObjectID device : playback.devices) {
    inputStreams += AudioObject(properties_, device)
                        .getArray(kAudioDevicePropertyStreams, kAudioObjectPropertyScopeInput)
                        .size();
  }
  state_->skipInputBuffers = static_cast<std::int64_t>(inputStreams);
  setSmallBuffer();
  if (!createIOProc()) {
    return false;
  }
  disableUnusedInputs(procID_, state_->skipInputBuffers);
  if (const OSStatus result = graph_.start(aggregateID_, procID_); result != noErr) {
    logger.error("start failed: " + status(result));
    return false;
  }
  logLatency(outputDevice);
  logger.info("tapping " + design_.bundleID + " (" + std::to_string(design_.processObjects.size()) +
              " processes) " + design_.sourceUID + " → " + design_.outputUID);
  return true;
}

void AppTap::stop() {
  if (aggregateID_ != 0 && procID_ != nullptr) {
    graph_.stop(aggregateID_, procID_);
    graph_.destroyIOProc(aggregateID_, procID_);
  }
  procID_ = nullptr;
  if (aggregateID_ != 0) {
    graph_.destroyAggregateDevice(aggregateID_);
  }
  aggregateID_ = 0;
  if (tapID_ != 0) {
    graph_.destroyProcessTap(tapID_);
  }
  tapID_ = 0;
}

bool AppTap::createTap(std::string& tapUUID) {
  tapUUID = clock_.makeUUID();
  const TapDescription description{.processes = design_.processObjects,
                                   .deviceUID = design_.sourceUID,
                                   .stream = 0,
                                   .uuid = tapUUID,
                                   .name = "Plemora – " + design_.bundleID,
                                   .isPrivate = true,
                                   .muteBehavior = TapMuteBehavior::mutedWhenTapped};
  if (const OSStatus result = graph_.createProcessTap(description, tapID_); result != noErr) {
    logger.error("create tap failed for " + design_.bundleID + ": " + status(result));
    return false;
  }
  return true;
}

bool AppTap::createAggregate(const std::string& tapUUID, const PlaybackDevices& playback) {
  AggregateDescription description{
      .name = "Plemora " + design_.bundleID,
      .uid = std::string(privateDeviceUIDPrefix) + clock_.makeUUID(),
      .mainUID = playback.main,
      .clockUID = playback.main,
      .isPrivate = true,
      .isStacked = false,
      .tapAutoStart = true,
      .subDevices = {},
      .taps = {{.uid = tapUUID, .drift = true}},
  };
  for (const std::string& uid : playback.uids) {
    description.subDevices.push_back({.uid = uid, .drift = uid != playback.main});
  }
  if (const OSStatus result = graph_.createAggregateDevice(description, aggregateID_);
      result != noErr) {
    logger.error("create aggregate failed: " + status(result));
    return false;
  }
  return true;
}

bool AppTap::createIOProc() {
  const OSStatus result = graph_.createIOProc(
      aggregateID_, queue_,
      [state = state_](AudioBufferList input, AudioBufferList output) {
        render(input, output, *state);
      },
      procID_);
  if (result != noErr || procID_ == nullptr) {
    logger.error("create io proc failed: " + status(result));
    return false;
  }
  return true;
}

void AppTap::setSmallBuffer() {
  const AudioObject aggregate(properties_, aggregateID_);
  const auto range = aggregate.readValue<AudioValueRange>(kAudioDevicePropertyBufferFrameSizeRange,
                                                          kAudioObjectPropertyScopeGlobal);
  if (!range) {
    return;
  }
  // The minimum comes last: it wins over a maximum that lies below it.
  const double frames = std::max(std::min(smallBuffer, range->mMaximum), range->mMinimum);
  if (frames >= 1 && frames <= UINT32_MAX) {
    aggregate.write(kAudioDevicePropertyBufferFrameSize, kAudioObjectPropertyScopeGlobal,
                    static_cast<std::uint32_t>(frames));
  }
}

void AppTap::disableUnusedInputs(AudioDeviceIOProcID procID, std::int64_t skipCount) {
  if (skipCount < 1) {
    return;
  }
  constexpr AudioObjectPropertyAddress address{kAudioDevicePropertyIOProcStreamUsage,
                                               kAudioObjectPropertyScopeInput,
                                               kAudioObjectPropertyElementMain};
  constexpr std::size_t flagsAt = offsetof(AudioHardwareIOProcStreamUsage, mStreamIsOn);
  std::size_t size = 0;
  if (properties_.dataSize(aggregateID_, address, size) != noErr || size < flagsAt) {
    return;
  }
  std::vector<std::byte> usage(size);
  std::memcpy(usage.data() + offsetof(AudioHardwareIOProcStreamUsage, mIOProc), &procID,
              sizeof procID);
  if (properties_.data(aggregateID_, address, size, usage.data()) != noErr || size < flagsAt) {
    return;
  }
  std::uint32_t streams = 0;
  std::memcpy(&streams, usage.data() + offsetof(AudioHardwareIOProcStreamUsage, mNumberStreams),
              sizeof streams);
  const std::size_t room = (size - flagsAt) / sizeof(std::uint32_t);
  const std::size_t off =
      std::min({static_cast<std::size_t>(streams), static_cast<std::size_t>(skipCount), room});
  std::fill_n(usage.begin() + flagsAt, off * sizeof(std::uint32_t), std::byte{0});
  properties_.setData(aggregateID_, address, size, usage.data());
}

void AppTap::logLatency(AudioObjectID outputDevice) {
  logger.info(tapLatencyLine(properties_, tapID_, aggregateID_, outputDevice));
}

}  // namespace plemora
