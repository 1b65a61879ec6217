#include "audio/tap_latency.h"

#include <cstdint>
#include <optional>

#include "audio/objects/audio_object.h"
#include "base/text.h"

namespace plemora {

namespace {

constexpr const char* unreadable = "?";

std::string shown(std::optional<double> value) {
  return value ? fixedPoint(*value) : unreadable;
}

std::string shown(std::optional<std::uint32_t> value) {
  return value ? std::to_string(*value) : unreadable;
}

std::string rate(const AudioObject& device) {
  return shown(device.readValue<double>(kAudioDevicePropertyNominalSampleRate,
                                        kAudioObjectPropertyScopeGlobal));
}

std::string bufferSize(const AudioObject& device) {
  return shown(device.readValue<std::uint32_t>(kAudioDevicePropertyBufferFrameSize,
                                               kAudioObjectPropertyScopeGlobal));
}

std::string latency(const AudioObject& device, AudioObjectPropertyScope scope) {
  return shown(device.readValue<std::uint32_t>(kAudioDevicePropertyLatency, scope)) + " safety " +
         shown(device.readValue<std::uint32_t>(kAudioDevicePropertySafetyOffset, scope));
}

}  // namespace

std::string tapLatencyLine(AudioProperties& properties, AudioObjectID tap, AudioObjectID aggregate,
                           AudioObjectID outputDevice) {
  const AudioObject aggregateDevice(properties, aggregate);
  const AudioObject output(properties, outputDevice);
  const auto format = AudioObject(properties, tap)
                          .readValue<AudioStreamBasicDescription>(kAudioTapPropertyFormat,
                                                                  kAudioObjectPropertyScopeGlobal);
  const auto range = aggregateDevice.readValue<AudioValueRange>(
      kAudioDevicePropertyBufferFrameSizeRange, kAudioObjectPropertyScopeGlobal);

  const std::string tapRate = format ? fixedPoint(format->mSampleRate) : unreadable;
  const std::string tapChannels = format ? std::to_string(format->mChannelsPerFrame) : unreadable;
  const std::string minimum = range ? fixedPoint(range->mMinimum) : unreadable;
  const std::string maximum = range ? fixedPoint(range->mMaximum) : unreadable;
  return "latency: agg rate " + rate(aggregateDevice) + " device rate " + rate(output) +
         " tap rate " + tapRate + " ch " + tapChannels + " | buffer " +
         bufferSize(aggregateDevice) + " (range " + minimum + "-" + maximum + "), device buffer " +
         bufferSize(output) + " | agg in lat " +
         latency(aggregateDevice, kAudioObjectPropertyScopeInput) + " | agg out lat " +
         latency(aggregateDevice, kAudioObjectPropertyScopeOutput) + " | device out lat " +
         latency(output, kAudioObjectPropertyScopeOutput);
}

}  // namespace plemora
