#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "audio/objects/audio_listener_token.h"
#include "audio/objects/audio_object.h"
#include "platform/audio_constants.h"
#include "platform/audio_graph.h"
#include "platform/audio_properties.h"

// What the contract of AudioProperties and AudioGraph stands on.

namespace plemora {

/// An adapter together with the world that it looks at, which a test can change. Called on the
/// main thread of the test.
class AudioWorld {
 public:
  virtual ~AudioWorld() = default;

  virtual AudioProperties& properties() = 0;
  virtual AudioGraph& graph() = 0;
  virtual std::shared_ptr<SerialQueue> makeIOQueue() = 0;

  /// Runs the main queue until the condition holds; false when it does not in good time.
  virtual bool waitUntil(const std::function<bool()>& condition) = 0;
  /// Runs the main queue until nothing more is to be expected of it.
  virtual void settle() = 0;

  /// Adds a stereo output device with settable volume and mute, and returns its UID.
  virtual std::string addDevice(const std::string& name) = 0;
  virtual void removeDevice(const std::string& uid) = 0;
  /// Starts a process that plays a stereo tone of that amplitude, and returns its PID.
  virtual std::int32_t startPlayer(const std::string& deviceUID, float amplitude) = 0;
  virtual void stopPlayer(std::int32_t pid) = 0;
  /// Largest sample that a device plays from now on, over a moment.
  virtual float listenTo(const std::string& deviceUID) = 0;
  /// Parts of amplitude by which listenTo may be wrong.
  virtual float accuracy() const = 0;
};

struct AudioWorldFactory {
  std::string name;
  std::function<std::unique_ptr<AudioWorld>()> make;
};

inline std::ostream& operator<<(std::ostream& out, const AudioWorldFactory& factory) {
  return out << factory.name;
}

class AudioContract : public testing::TestWithParam<AudioWorldFactory> {
 protected:
  static constexpr auto global = kAudioObjectPropertyScopeGlobal;
  static constexpr auto output = kAudioObjectPropertyScopeOutput;
  static constexpr AudioObjectID nobody = 0x7ffffff0;

  void SetUp() override {
    world = GetParam().make();
    ASSERT_TRUE(world);
  }

  AudioObject object(AudioObjectID id) { return {world->properties(), id}; }
  AudioObject system() { return object(kAudioObjectSystemObject); }

  std::optional<AudioListenerToken> watch(AudioObjectID id, AudioObjectPropertySelector selector,
                                          AudioObjectPropertyScope scope,
                                          std::function<void()> callback) {
    return listen(world->properties(), id, selector, scope, kAudioObjectPropertyElementMain,
                  std::move(callback));
  }

  AudioObjectID findDevice(const std::string& uid) {
    for (const auto id : system().getArray(kAudioHardwarePropertyDevices, global)) {
      if (object(id).getString(kAudioDevicePropertyDeviceUID, global) == uid) {
        return id;
      }
    }
    return kAudioObjectUnknown;
  }

  /// Adds a device and waits until it is listed.
  AudioObjectID makeDevice(const std::string& name, std::string* uid = nullptr) {
    const std::string newUID = world->addDevice(name);
    EXPECT_TRUE(world->waitUntil([&] { return findDevice(newUID) != kAudioObjectUnknown; }));
    if (uid) {
      *uid = newUID;
    }
    return findDevice(newUID);
  }

  AudioObjectID findProcess(std::int32_t pid) {
    for (const auto id : system().getArray(kAudioHardwarePropertyProcessObjectList, global)) {
      if (object(id).readValue<std::int32_t>(kAudioProcessPropertyPID, global) == pid) {
        return id;
      }
    }
    return kAudioObjectUnknown;
  }

  bool isRunning(AudioObjectID process) {
    return object(process)
               .readValue<std::uint32_t>(kAudioProcessPropertyIsRunningOutput, global)
               .value_or(0) != 0;
  }

  std::vector<AudioObjectID> devicesOf(AudioObjectID process) {
    return object(process).getArray(kAudioProcessPropertyDevices, output);
  }

  std::unique_ptr<AudioWorld> world;
};

/// Writes gain times the input to the output, channel by channel, whatever the buffers are.
inline void copyWithGain(AudioBufferList in, AudioBufferList out, float gain) {
  struct Channel {
    float* samples;
    std::size_t stride;
    std::size_t frames;
  };
  const auto channelsOf = [](AudioBufferList list) {
    std::vector<Channel> channels;
    for (const AudioBuffer& buffer : list) {
      const std::size_t width = buffer.mNumberChannels == 0 ? 1 : buffer.mNumberChannels;
      for (std::size_t c = 0; c < width && buffer.mData; ++c) {
        channels.push_back({static_cast<float*>(buffer.mData) + c, width,
                            buffer.mDataByteSize / (width * sizeof(float))});
      }
    }
    return channels;
  };
  const auto sources = channelsOf(in);
  const auto targets = channelsOf(out);
  for (std::size_t c = 0; c < targets.size(); ++c) {
    for (std::size_t i = 0; i < targets[c].frames; ++i) {
      const bool hasSample = !sources.empty() && i < sources[c % sources.size()].frames;
      const Channel& source = hasSample ? sources[c % sources.size()] : targets[c];
      targets[c].samples[i * targets[c].stride] =
          hasSample ? gain * source.samples[i * source.stride] : 0.0F;
    }
  }
}

/// A tap of one process with an aggregate device and an IO proc that applies a gain.
class ContractTap {
  // The block may outlive the tap for a moment.
  struct State {
    std::atomic<float> gain{1.0F};
    std::atomic<int> cycles{0};
  };
  std::shared_ptr<State> state_ = std::make_shared<State>();

 public:
  ContractTap(AudioWorld& world, AudioObjectID process, const std::string& sourceUID,
              const std::string& targetUID, const std::string& uuid)
      : graph_(world.graph()) {
    TapDescription tap;
    tap.processes = {process};
    tap.deviceUID = sourceUID;
    tap.uuid = uuid;
    tap.name = "Contract";
    tap.isPrivate = true;
    tap.muteBehavior = TapMuteBehavior::mutedWhenTapped;
    EXPECT_EQ(graph_.createProcessTap(tap, tap_), noErr);
    AggregateDescription aggregate;
    aggregate.name = "Contract";
    aggregate.uid = "com.quorvane.mixer.aggregate." + uuid;
    aggregate.mainUID = aggregate.clockUID = targetUID;
    aggregate.isPrivate = aggregate.tapAutoStart = true;
    aggregate.subDevices = {{targetUID, false}};
    aggregate.taps = {{uuid, true}};
    EXPECT_EQ(graph_.createAggregateDevice(aggregate, device), noErr);
    EXPECT_EQ(graph_.createIOProc(
                  device, world.makeIOQueue(),
                  [state = state_](AudioBufferList in, AudioBufferList out) {
                    ++state->cycles;
                    copyWithGain(in, out, state->gain);
                  },
                  proc),
              noErr);
    EXPECT_NE(tap_, kAudioObjectUnknown);
    EXPECT_NE(device, kAudioObjectUnknown);
    EXPECT_NE(proc, nullptr);
  }
  ~ContractTap() {
    graph_.stop(device, proc);
    graph_.destroyIOProc(device, proc);
    graph_.destroyAggregateDevice(device);
    graph_.destroyProcessTap(tap_);
  }
  ContractTap(const ContractTap&) = delete;
  ContractTap& operator=(const ContractTap&) = delete;

  std::atomic<float>& gain = state_->gain;
  std::atomic<int>& cycles = state_->cycles;
  AudioObjectID device = kAudioObjectUnknown;
  AudioDeviceIOProcID proc = nullptr;

 private:
  AudioGraph& graph_;
  AudioObjectID tap_ = kAudioObjectUnknown;
};

}  // namespace plemora
