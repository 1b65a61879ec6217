#include <algorithm>
#include <functional>
#include <utility>

#include "adapters/stage/simulated_hal.h"

namespace plemora {

namespace {

Sound silence(std::size_t channels, std::uint32_t frames) {
  return Sound(channels, std::vector<float>(frames, 0.0F));
}

void mix(Sound& into, std::size_t channel, const std::vector<float>& samples) {
  if (channel < into.size()) {
    std::ranges::transform(into[channel], samples, into[channel].begin(), std::plus<>());
  }
}

std::uint32_t channelCount(const std::vector<HalStream>& streams) {
  std::uint32_t sum = 0;
  for (const HalStream& stream : streams) {
    sum += stream.channels;
  }
  return sum;
}

// The buffers of one direction of an IO cycle, and the samples that they point to.
class Buffers {
 public:
  void add(std::uint32_t channels, const Sound& sound, std::size_t firstChannel,
           std::uint32_t frames, bool isOn) {
    const std::uint32_t width = std::max(channels, 1U);
    std::vector<float> interleaved(std::size_t{width} * frames, 0.0F);
    for (std::uint32_t c = 0; c < width && firstChannel + c < sound.size(); ++c) {
      for (std::uint32_t i = 0; i < frames; ++i) {
        interleaved[std::size_t{i} * width + c] = sound[firstChannel + c][i];
      }
    }
    samples_.push_back(std::move(interleaved));
    buffers_.push_back({channels, width * frames * static_cast<std::uint32_t>(sizeof(float)),
                        isOn ? samples_.back().data() : nullptr});
  }

  AudioBufferList list() const { return buffers_; }

  std::vector<float> channel(std::size_t buffer, std::uint32_t index, std::uint32_t frames) const {
    const std::size_t width = std::max(buffers_[buffer].mNumberChannels, 1U);
    std::vector<float> result(frames);
    for (std::uint32_t i = 0; i < frames; ++i) {
      result[i] = samples_[buffer][i * width + index];
    }
    return result;
  }

 private:
  std::vector<std::vector<float>> samples_;  // moving one keeps its address
  std::vector<AudioBuffer> buffers_;
};

// One step of everything.
class Cycle {
 public:
  Cycle(HalState& state, std::uint32_t frames) : state_(state), frames_(frames) {}

  void run() {
    for (auto& [id, device] : state_.devices) {
      device.heard = silence(channelCount(device.outputs), frames_);
    }
    for (auto& [id, tap] : state_.taps) {
      tap.captured = silence(tap.format.mChannelsPerFrame, frames_);
    }
    for (const auto& [id, process] : state_.processes) {
      if (process.isRunningOutput && process.source) {
        for (const AudioObjectID device : process.devices) {
          playProcess(id, process, device);
        }
      }
    }
    for (auto& [id, device] : state_.devices) {
      for (auto& [procID, proc] : device.procs) {
        if (proc.isStarted) {
          runProc(device, proc);
        }
      }
    }
    state_.frame += frames_;
  }

 private:
  void playProcess(AudioObjectID id, const SimulatedProcess& process, AudioObjectID deviceID) {
    const auto found = state_.devices.find(deviceID);
    if (found == state_.devices.end()) {
      return;
    }
    HalDevice& device = found->second;
    const Sound sound = generate(process.source, device.heard.size());
    bool isSilenced = false;
    for (auto& [tapID, tap] : state_.taps) {
      const TapDescription& description = tap.description;
      if (description.deviceUID != device.facts.uid ||
          std::ranges::find(description.processes, id) == description.processes.end()) {
        continue;
      }
      capture(tap, device, sound);
      isSilenced = isSilenced || description.muteBehavior == TapMuteBehavior::muted ||
                   (description.muteBehavior == TapMuteBehavior::mutedWhenTapped &&
                    isRead(description.uuid));
    }
    if (!isSilenced) {
      play(device, sound);
    }
  }

  Sound generate(const SampleSource& source, std::size_t channels) const {
    Sound sound = silence(channels, frames_);
    for (std::uint32_t c = 0; c < channels; ++c) {
      for (std::uint32_t i = 0; i < frames_; ++i) {
        sound[c][i] = source ? source(state_.frame + i, c) : 0.0F;
      }
    }
    return sound;
  }

  void capture(HalTap& tap, const HalDevice& device, const Sound& sound) const {
    const auto stream = static_cast<std::size_t>(tap.description.stream);
    std::size_t first = 0;
    for (std::size_t i = 0; i < stream; ++i) {
      first += device.outputs[i].channels;
    }
    for (std::size_t c = 0;
         c < std::min<std::size_t>(device.outputs[stream].channels, tap.captured.size()); ++c) {
      mix(tap.captured, c, sound[first + c]);
    }
  }

  bool isRead(const std::string& uuid) const {
    for (const auto& [id, device] : state_.devices) {
      for (const HalStream& stream : device.inputs) {
        if (!stream.isTap || stream.memberUID != uuid) {
          continue;
        }
        for (const auto& [procID, proc] : device.procs) {
          if (proc.isStarted && !proc.streamsOff.contains(stream.id)) {
            return true;
          }
        }
      }
    }
    return false;
  }

  // Adds the sound to what a device plays, and passes it on to the members of an aggregate.
  void play(HalDevice& device, const Sound& sound) {
    for (std::size_t c = 0; c < sound.size(); ++c) {
      mix(device.heard, c, sound[c]);
    }
    if (!device.composition) {
      return;
    }
    std::size_t channel = 0;
    for (const HalStream& stream : device.outputs) {
      const auto member = state_.devices.find(state_.deviceWithUID(stream.memberUID));
      for (std::uint32_t c = 0; c < stream.channels; ++c, ++channel) {
        if (member != state_.devices.end()) {
          mix(member->second.heard, stream.firstChannel + c,
              sound[device.composition->isStacked ? stream.firstChannel + c : channel]);
        }
      }
    }
  }

  void runProc(HalDevice& device, const HalIOProc& proc) {
    Buffers inputs;
    for (const HalStream& stream : state_.activeStreams(device, kAudioObjectPropertyScopeInput)) {
      const bool isOn = !proc.streamsOff.contains(stream.id);
      if (stream.isTap) {
        const HalTap& tap = state_.taps.at(state_.tapWithUUID(stream.memberUID));
        std::size_t first = 0;
        for (const std::uint32_t channels : tap.buffers) {
          inputs.add(channels, tap.captured, first, frames_, isOn);
          first += std::max(channels, 1U);
        }
      } else {
        const HalDevice& member = state_.devices.at(state_.deviceWithUID(stream.memberUID));
        inputs.add(stream.channels, generate(member.facts.inputSource, channelCount(member.inputs)),
                   stream.firstChannel, frames_, isOn);
      }
    }
    const auto streams = state_.activeStreams(device, kAudioObjectPropertyScopeOutput);
    Buffers outputs;
    for (const HalStream& stream : streams) {
      outputs.add(stream.channels, {}, 0, frames_, !proc.streamsOff.contains(stream.id));
    }
    proc.block(inputs.list(), outputs.list());
    std::size_t channel = 0;
    for (std::size_t b = 0; b < streams.size(); ++b) {
      HalDevice& member = state_.devices.at(state_.deviceWithUID(streams[b].memberUID));
      for (std::uint32_t c = 0; c < streams[b].channels; ++c, ++channel) {
        const auto samples = outputs.channel(b, c, frames_);
        mix(member.heard, streams[b].firstChannel + c, samples);
        if (device.composition) {
          mix(device.heard, channel, samples);
        }
      }
    }
  }

  HalState& state_;
  std::uint32_t frames_;
};

}  // namespace

void SimulatedHal::step(std::uint32_t frames) {
  const std::lock_guard lock(mutex_);
  Cycle(state_, frames).run();
}

Sound SimulatedHal::heard(AudioObjectID device) const {
  const std::lock_guard lock(mutex_);
  return state_.devices.at(device).heard;
}

}  // namespace plemora
