#include "adapters/linux/pipewire/property_table.h"

#include <algorithm>

#include "adapters/linux/pipewire/sink_identity.h"
#include "platform/audio_constants.h"

namespace plemora {

namespace {

using Value = std::optional<PropertyValue>;
using Ids = std::vector<AudioObjectID>;

constexpr auto global = kAudioObjectPropertyScopeGlobal;
constexpr auto input = kAudioObjectPropertyScopeInput;
constexpr auto output = kAudioObjectPropertyScopeOutput;

template <typename Object>
struct Row {
  FourCharCode selector;
  FourCharCode scope;
  Value (*read)(const Object&);
};

template <typename Objects>
Ids idsOf(const Objects& objects) {
  Ids ids;
  for (const auto& [id, object] : objects) {
    ids.push_back(id);
  }
  return ids;
}

constexpr Row<AudioObjects> systemRows[] = {
    {kAudioHardwarePropertyDevices, global,
     [](const AudioObjects& all) -> Value { return idsOf(all.sinks()); }},
    {kAudioHardwarePropertyProcessObjectList, global,
     [](const AudioObjects& all) -> Value { return idsOf(all.processes()); }},
    {kAudioHardwarePropertyDefaultOutputDevice, global,
     [](const AudioObjects& all) -> Value { return all.defaultSink(); }},
    {kAudioHardwarePropertyDefaultSystemOutputDevice, global,
     [](const AudioObjects& all) -> Value { return all.defaultSink(); }},
};

constexpr Row<ProcessObject> processRows[] = {
    {kAudioProcessPropertyPID, global,
     [](const ProcessObject& process) -> Value { return static_cast<std::uint32_t>(process.pid); }},
    {kAudioProcessPropertyIsRunningOutput, global,
     [](const ProcessObject& process) -> Value { return process.isRunning ? 1u : 0u; }},
    {kAudioProcessPropertyDevices, output,
     [](const ProcessObject& process) -> Value { return process.devices; }},
};

Value sliderValue(const SinkObject& sink) {
  return sink.volume ? Value(sliderOf(*sink.volume)) : std::nullopt;
}

constexpr Row<SinkObject> sinkRows[] = {
    {kAudioObjectPropertyName, global, [](const SinkObject& sink) -> Value { return sink.name; }},
    {kAudioDevicePropertyDeviceUID, global,
     [](const SinkObject& sink) -> Value { return sink.uid; }},
    {kAudioDevicePropertyTransportType, global,
     [](const SinkObject& sink) -> Value { return sink.transport; }},
    {kAudioDevicePropertyStreams, output,
     [](const SinkObject& sink) -> Value { return Ids{sink.stream}; }},
    {kAudioDevicePropertyStreams, input, [](const SinkObject&) -> Value { return Ids{}; }},
    {kAudioDevicePropertyIsHidden, global,
     [](const SinkObject& sink) -> Value { return sink.isHidden ? 1u : 0u; }},
    {kAudioDevicePropertyDataSource, output,
     [](const SinkObject& sink) -> Value {
       return sink.dataSource ? Value(*sink.dataSource) : std::nullopt;
     }},
    {kAudioDevicePropertyNominalSampleRate, global,
     [](const SinkObject& sink) -> Value {
       return sink.sampleRate != 0 ? Value(static_cast<double>(sink.sampleRate)) : std::nullopt;
     }},
    {kAudioDevicePropertyBufferFrameSize, global,
     [](const SinkObject& sink) -> Value {
       return sink.bufferFrames != 0 ? Value(sink.bufferFrames) : std::nullopt;
     }},
    {kAudioHardwareServiceDeviceProperty_VirtualMainVolume, output, sliderValue},
    {kAudioDevicePropertyVolumeScalar, output, sliderValue},
    {kAudioDevicePropertyMute, output,
     [](const SinkObject& sink) -> Value {
       return sink.volume ? Value(sink.volume->muted ? 1u : 0u) : std::nullopt;
     }},
};

constexpr Row<AggregateRecord> aggregateRows[] = {
    {kAudioObjectPropertyName, global,
     [](const AggregateRecord& device) -> Value { return device.description.name; }},
    {kAudioDevicePropertyDeviceUID, global,
     [](const AggregateRecord& device) -> Value { return device.description.uid; }},
    {kAudioDevicePropertyTransportType, global,
     [](const AggregateRecord&) -> Value { return kAudioDeviceTransportTypeAggregate; }},
    {kAudioDevicePropertyStreams, input, [](const AggregateRecord&) -> Value { return Ids{}; }},
    {kAudioAggregateDevicePropertyMainSubDevice, global,
     [](const AggregateRecord& device) -> Value { return device.description.mainUID; }},
};

constexpr Row<TapDescription> tapRows[] = {
    {kAudioObjectPropertyName, global, [](const TapDescription& tap) -> Value { return tap.name; }},
};

// Taps hand out 32-bit floats, one buffer per channel of the device that the app plays to.
AudioStreamBasicDescription tapFormat(const SinkObject& source) {
  AudioStreamBasicDescription format;
  format.mSampleRate = source.sampleRate;
  format.mFormatID = fourCharCode("lpcm");
  format.mFormatFlags = 1u | 8u | 32u;  // float, packed, not interleaved
  format.mFramesPerPacket = 1;
  format.mBytesPerFrame = format.mBytesPerPacket = sizeof(float);
  format.mChannelsPerFrame = source.channels;
  format.mBitsPerChannel = 32;
  return format;
}

template <typename Object, std::size_t count>
Value readRow(const Row<Object> (&rows)[count], const Object& object,
              const AudioObjectPropertyAddress& address) {
  for (const Row<Object>& row : rows) {
    if (row.selector == address.mSelector && row.scope == address.mScope &&
        address.mElement == kAudioObjectPropertyElementMain) {
      return row.read(object);
    }
  }
  return std::nullopt;
}

}  // namespace

bool isKnownObject(const AudioObjects& objects, const PrivateObjects& own, AudioObjectID object) {
  return object == kAudioObjectSystemObject || objects.sinks().contains(object) ||
         objects.processes().contains(object) || own.aggregates.contains(object) ||
         own.taps.contains(object);
}

std::optional<PropertyValue> readProperty(const AudioObjects& objects, const PrivateObjects& own,
                                          AudioObjectID object,
                                          const AudioObjectPropertyAddress& address) {
  if (object == kAudioObjectSystemObject) {
    return readRow(systemRows, objects, address);
  }
  if (const auto sink = objects.sinks().find(object); sink != objects.sinks().end()) {
    return readRow(sinkRows, sink->second, address);
  }
  if (const auto process = objects.processes().find(object); process != objects.processes().end()) {
    return readRow(processRows, process->second, address);
  }
  if (const auto device = own.aggregates.find(object); device != own.aggregates.end()) {
    // An aggregate device runs in the cycle of its main device.
    const SinkObject* main = objects.sinkOfUid(device->second.description.mainUID);
    const bool isClock = address.mSelector == kAudioDevicePropertyNominalSampleRate ||
                         address.mSelector == kAudioDevicePropertyBufferFrameSize;
    return isClock && main != nullptr ? readRow(sinkRows, *main, address)
                                      : readRow(aggregateRows, device->second, address);
  }
  if (const auto tap = own.taps.find(object); tap != own.taps.end()) {
    const SinkObject* source = objects.sinkOfUid(tap->second.deviceUID);
    return address.mSelector == kAudioTapPropertyFormat && source != nullptr
               ? Value(tapFormat(*source))
               : readRow(tapRows, tap->second, address);
  }
  return std::nullopt;
}

}  // namespace plemora
