#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "adapters/stage/simulated_hal.h"
#include "adapters/stage/virtual_clock.h"
#include "adapters/stage/virtual_main_queue.h"
#include "platform/audio_constants.h"

namespace plemora {
namespace {

constexpr std::uint32_t frames = 4;

// A ramp that tells frames and channels apart.
SampleSource ramp(float scale) {
  return [scale](std::uint64_t frame, std::uint32_t channel) {
    return scale * (static_cast<float>(frame) + 100 * static_cast<float>(channel));
  };
}

// What an IO proc was given, and what it shall play.
struct Recorder {
  std::vector<std::uint32_t> inputChannels;
  std::vector<std::vector<float>> inputs;  // empty: no data
  std::vector<std::uint32_t> outputChannels;

  void operator()(AudioBufferList in, AudioBufferList out) {
    inputChannels.clear();
    inputs.clear();
    outputChannels.clear();
    for (const AudioBuffer& buffer : in) {
      inputChannels.push_back(buffer.mNumberChannels);
      std::vector<float> samples(buffer.mData ? buffer.mDataByteSize / sizeof(float) : 0);
      if (buffer.mData) {
        std::memcpy(samples.data(), buffer.mData, buffer.mDataByteSize);
      }
      inputs.push_back(std::move(samples));
    }
    float value = 1;
    for (const AudioBuffer& buffer : out) {
      outputChannels.push_back(buffer.mNumberChannels);
      for (std::size_t i = 0; buffer.mData && i < buffer.mDataByteSize / sizeof(float); ++i) {
        static_cast<float*>(buffer.mData)[i] = value++;
      }
    }
  }
};

class HalSound : public testing::Test {
 protected:
  AudioObjectID addDevice(const std::string& uid, std::vector<std::uint32_t> outputs,
                          std::vector<std::uint32_t> inputs = {}) {
    SimulatedDevice device;
    device.uid = uid;
    device.outputStreams = std::move(outputs);
    device.inputStreams = std::move(inputs);
    return hal.addDevice(device);
  }

  AudioObjectID play(AudioObjectID device, SampleSource source) {
    return hal.addProcess({.pid = 1, .devices = {device}, .source = std::move(source)});
  }

  AudioObjectID tap(AudioObjectID process, const std::string& deviceUID, TapMuteBehavior mute,
                    int stream = 0) {
    TapDescription description;
    description.processes = {process};
    description.deviceUID = deviceUID;
    description.stream = stream;
    description.uuid = "tap-" + std::to_string(++taps);
    description.muteBehavior = mute;
    AudioObjectID id = 0;
    EXPECT_EQ(hal.createProcessTap(description, id), noErr);
    return id;
  }

  AudioObjectID aggregate(const std::vector<std::string>& devices,
                          const std::vector<std::string>& tapUUIDs) {
    AggregateDescription description;
    description.uid = "aggregate-" + std::to_string(++aggregates);
    description.mainUID = devices.front();
    for (const auto& uid : devices) {
      description.subDevices.push_back({uid, false});
    }
    for (const auto& uuid : tapUUIDs) {
      description.taps.push_back({uuid, true});
    }
    AudioObjectID id = 0;
    EXPECT_EQ(hal.createAggregateDevice(description, id), noErr);
    return id;
  }

  AudioDeviceIOProcID run(AudioObjectID device, Recorder& recorder) {
    AudioDeviceIOProcID proc = nullptr;
    EXPECT_EQ(hal.createIOProc(device, nullptr, std::ref(recorder), proc), noErr);
    EXPECT_EQ(hal.start(device, proc), noErr);
    return proc;
  }

  VirtualClock clock;
  VirtualMainQueue main{clock};
  SimulatedHal hal{main};
  int taps = 0;
  int aggregates = 0;
};

TEST_F(HalSound, MixesTheProcessesOfADeviceAndKeepsTime) {
  const auto speakers = addDevice("speakers", {2});
  const auto other = addDevice("other", {1});
  play(speakers, ramp(1));
  const auto paused = play(speakers, ramp(10));
  hal.step(frames);
  EXPECT_EQ(hal.heard(speakers), (Sound{{0, 11, 22, 33}, {1100, 1111, 1122, 1133}}));
  EXPECT_EQ(hal.heard(other), Sound{std::vector<float>(frames)});
  hal.updateProcess(paused, [](SimulatedProcess& process) { process.isRunningOutput = false; });
  hal.step(2);
  EXPECT_EQ(hal.heard(speakers), (Sound{{4, 5}, {104, 105}}));
}

TEST_F(HalSound, TapsMuteAsTheySay) {
  const auto speakers = addDevice("speakers", {1});
  const auto process = play(speakers, [](std::uint64_t frame, std::uint32_t) {
    return static_cast<float>(frame % frames);
  });
  const Sound direct{{0, 1, 2, 3}};
  const Sound silent{{0, 0, 0, 0}};
  struct Case {
    TapMuteBehavior mute;
    Sound unread, read;
  };
  // While read, the recorder plays 1, 2, 3, 4 besides.
  for (const auto& [mute, unread, read] :
       {Case{TapMuteBehavior::unmuted, direct, {{1, 3, 5, 7}}},
        Case{TapMuteBehavior::muted, silent, {{1, 2, 3, 4}}},
        Case{TapMuteBehavior::mutedWhenTapped, direct, {{1, 2, 3, 4}}}}) {
    const auto id = tap(process, "speakers", mute);
    const auto device = aggregate({"speakers"}, {hal.liveTaps().back().uuid});
    Recorder recorder;
    const auto proc = run(device, recorder);
    hal.step(frames);
    EXPECT_EQ(hal.heard(speakers), read);
    EXPECT_EQ(recorder.inputs, (std::vector<std::vector<float>>{{0, 1, 2, 3}}));
    EXPECT_EQ(hal.stop(device, proc), noErr);
    hal.step(frames);
    EXPECT_EQ(hal.heard(speakers), unread);
    EXPECT_EQ(hal.destroyIOProc(device, proc), noErr);
    EXPECT_EQ(hal.destroyAggregateDevice(device), noErr);
    EXPECT_EQ(hal.destroyProcessTap(id), noErr);
  }
  EXPECT_EQ(hal.liveProcs() + hal.runningProcs(), 0);
  EXPECT_TRUE(hal.liveTaps().empty() && hal.liveAggregates().empty());
}

TEST_F(HalSound, ATapHearsOnlyItsProcessesOnItsStreamOfItsDevice) {
  const auto pairs = addDevice("pairs", {2, 2});
  const auto elsewhere = addDevice("elsewhere", {2});
  const auto tapped = play(pairs, ramp(1));
  hal.updateProcess(tapped, [&](SimulatedProcess& p) { p.devices.push_back(elsewhere); });
  play(pairs, ramp(1000));
  tap(tapped, "pairs", TapMuteBehavior::mutedWhenTapped, 1);
  Recorder recorder;
  run(aggregate({"elsewhere"}, {"tap-1"}), recorder);
  hal.step(2);
  EXPECT_EQ(recorder.inputs, (std::vector<std::vector<float>>{{200, 300, 201, 301}}));
  EXPECT_EQ(hal.heard(pairs)[1], (std::vector<float>{100000, 101000}));  // the other process
  EXPECT_EQ(hal.heard(elsewhere), (Sound{{0 + 1, 1 + 3}, {100 + 2, 101 + 4}}));  // both
}

TEST_F(HalSound, GivesInputsOfTheMembersFirstInEveryLayout) {
  addDevice("headset", {1, 1}, {1, 2});
  const auto speakers = addDevice("speakers", {2});
  const auto process = play(speakers, ramp(1));
  for (const auto& [buffers, channels] :
       std::vector<std::pair<std::vector<std::uint32_t>, std::vector<std::uint32_t>>>{
           {{}, {1, 2, 2}}, {{1, 1}, {1, 2, 1, 1}}, {{0, 1}, {1, 2, 0, 1}}, {{1}, {1, 2, 1}}}) {
    hal.setTapBuffers(buffers);
    const auto id = tap(process, "speakers", TapMuteBehavior::unmuted);
    Recorder recorder;
    const auto device = aggregate({"headset", "speakers"}, {hal.liveTaps().back().uuid});
    run(device, recorder);
    hal.step(frames);
    EXPECT_EQ(recorder.inputChannels, channels);
    EXPECT_EQ(recorder.outputChannels, (std::vector<std::uint32_t>{1, 1, 2}));
    EXPECT_EQ(recorder.inputs[0], std::vector<float>(frames));
    EXPECT_EQ(recorder.inputs[1], std::vector<float>(2 * frames));
    EXPECT_EQ(recorder.inputs[2].size(), buffers.empty() ? 2 * frames : frames);
    hal.destroyAggregateDevice(device);
    hal.destroyProcessTap(id);
  }
}

TEST_F(HalSound, CarriesTheOutputsOfAnAggregateToItsMembers) {
  const auto planar = addDevice("planar", {1, 1});
  const auto stereo = addDevice("stereo", {2});
  Recorder recorder;
  run(aggregate({"planar", "stereo"}, {}), recorder);
  hal.step(2);
  EXPECT_EQ(hal.heard(planar), (Sound{{1, 2}, {3, 4}}));
  EXPECT_EQ(hal.heard(stereo), (Sound{{5, 7}, {6, 8}}));
  hal.removeDevice(planar);
  hal.step(2);
  EXPECT_EQ(recorder.outputChannels, std::vector<std::uint32_t>{2});
  EXPECT_EQ(hal.heard(stereo), (Sound{{1, 3}, {2, 4}}));
}

TEST_F(HalSound, PassesSoundThroughAUsersAggregate) {
  const auto a = addDevice("a", {1});
  const auto b = addDevice("b", {1});
  SimulatedDevice facts;
  facts.uid = "wide";
  play(hal.addAggregate(facts, {"a", "b"}, "a"), ramp(1));
  hal.step(2);
  EXPECT_EQ(hal.heard(a), (Sound{{0, 1}}));
  EXPECT_EQ(hal.heard(b), (Sound{{100, 101}}));
  facts.uid = "both";
  play(hal.addAggregate(facts, {"a", "b"}, "b", true), ramp(1000));
  hal.step(2);
  EXPECT_EQ(hal.heard(a), (Sound{{2002, 3003}}));
  EXPECT_EQ(hal.heard(b), (Sound{{2102, 3103}}));
}

TEST_F(HalSound, GivesNoDataForStreamsThatAreSwitchedOff) {
  const auto headset = addDevice("headset", {1}, {1, 1});
  hal.updateDevice(headset, [](SimulatedDevice& d) { d.inputSource = ramp(1); });
  const auto process = play(headset, ramp(5));
  tap(process, "headset", TapMuteBehavior::mutedWhenTapped);
  const auto device = aggregate({"headset"}, {"tap-1"});
  Recorder recorder;
  const auto proc = run(device, recorder);

  const AudioObjectPropertyAddress usage{kAudioDevicePropertyIOProcStreamUsage,
                                         kAudioObjectPropertyScopeInput, 0};
  constexpr std::size_t head = offsetof(AudioHardwareIOProcStreamUsage, mStreamIsOn);
  std::size_t size = 0;
  ASSERT_EQ(hal.dataSize(device, usage, size), noErr);
  ASSERT_EQ(size, head + 3 * sizeof(std::uint32_t));
  std::vector<std::byte> bytes(size);
  std::memcpy(bytes.data(), &proc, sizeof proc);
  ASSERT_EQ(hal.data(device, usage, size, bytes.data()), noErr);
  std::uint32_t words[4];
  std::memcpy(words, bytes.data() + offsetof(AudioHardwareIOProcStreamUsage, mNumberStreams),
              sizeof words);
  EXPECT_EQ(std::vector<std::uint32_t>(words, words + 4), (std::vector<std::uint32_t>{3, 1, 1, 1}));

  const auto setFlags = [&](std::array<std::uint32_t, 3> flags) {
    std::memcpy(bytes.data() + head, flags.data(), sizeof flags);
    EXPECT_EQ(hal.setData(device, usage, bytes.size(), bytes.data()), noErr);
  };
  setFlags({0, 0, 1});
  hal.step(2);
  EXPECT_EQ(recorder.inputs, (std::vector<std::vector<float>>{{}, {}, {0, 5}}));
  EXPECT_EQ(hal.heard(headset), (Sound{{1, 2}}));
  // Nobody reads a tap whose stream is off: the process is heard again.
  setFlags({1, 1, 0});
  hal.step(2);
  EXPECT_EQ(recorder.inputs, (std::vector<std::vector<float>>{{2, 3}, {102, 103}, {}}));
  EXPECT_EQ(hal.heard(headset), (Sound{{11, 17}}));

  AudioDeviceIOProcID unknown = reinterpret_cast<AudioDeviceIOProcID>(std::uintptr_t{999});
  std::memcpy(bytes.data(), &unknown, sizeof unknown);
  EXPECT_NE(hal.data(device, usage, size, bytes.data()), noErr);
  EXPECT_NE(hal.setData(device, usage, bytes.size(), bytes.data()), noErr);
}

}  // namespace
}  // namespace plemora
