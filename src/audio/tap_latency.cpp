#include "audio/tap_latency.h"

#include <cstdint>
#include <optional>

#include "audio/objects/audio_object.h"
#include "base/text.h"

namespace plemora {

namespace {

std::string shown(std::optional<double> value) {
  return value ? fixedPoint(*value) : "?";
}

std::string shown(std::optional<std::uint32_t> value) {
  return value ? std::to_string(*value) : "?";
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

  const auto tapRate = format ? std::optional(format->mSampleRate) : std::nullopt;
  const auto tapChannels = format ? std::optional(format->mChannelsPerFrame) : std::nullopt;
  const auto minimum = range ? std::optional(range->mMinimum) : std::nullopt;
  const auto maximum = range ? std::optional(range->mMaximum) : std::nullopt;
  return "latency: agg rate " + rate(aggregateDevice) + " device rate " + rate(output) +
         " tap rate " + shown(tapRate) + " ch " + shown(tapChannels) + " | buffer " +
         bufferSize(aggregateDevice) + " (range " + shown(minimum) + "-" + shown(maximum) +
         "), device buffer " + bufferSize(output) + " | agg in lat " +
         latency(aggregateDevice, kAudioObjectPropertyScopeInput) + " | agg out lat " +
         latency(aggregateDevice, kAudioObjectPropertyScopeOutput) + " | device out lat " +
         latency(output, kAudioObjectPropertyScopeOutput);
}

}  // namespace plemora
