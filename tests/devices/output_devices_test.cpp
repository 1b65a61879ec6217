#include "devices/output_devices.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "adapters/stage/scripted_system_info.h"
#include "adapters/stage/simulated_hal.h"
#include "adapters/stage/virtual_clock.h"
#include "adapters/stage/virtual_main_queue.h"
#include "audio/objects/audio_object.h"
#include "platform/audio_constants.h"

namespace plemora {
namespace {

constexpr auto global = kAudioObjectPropertyScopeGlobal;
constexpr auto output = kAudioObjectPropertyScopeOutput;

class OutputDevicesTest : public testing::Test {
 protected:
  AudioObjectID add(const std::string& name,
                    FourCharCode transport = kAudioDeviceTransportTypeBuiltIn) {
    return hal.addDevice({.uid = name + "-uid", .name = name, .transport = transport});
  }

  static std::vector<std::string> names(const OutputDevices& outputs) {
    std::vector<std::string> result;
    for (const OutputDevice& device : outputs.devices.get()) {
      result.push_back(device.name);
    }
    return result;
  }

  AudioObjectID systemValue(AudioObjectPropertySelector selector) {
    return AudioObject(hal, kAudioObjectSystemObject)
        .readValue<AudioObjectID>(selector, global)
        .value_or(0);
  }

  VirtualClock clock;
  VirtualMainQueue main{clock};
  SimulatedHal hal{main};
  ScriptedSystemInfo system;
};

using Names = std::vector<std::string>;

TEST_F(OutputDevicesTest, ListsWhatAUserCanChooseNearestFirst) {
  add("Receiver", kAudioDeviceTransportTypeAirPlay);
  add("Aggregate", kAudioDeviceTransportTypeAggregate);
  add("Cinema", kAudioDeviceTransportTypeHDMI);
  add("Dock", kAudioDeviceTransportTypeThunderbolt);
  add("Screen", kAudioDeviceTransportTypeDisplayPort);
  add("Buds", kAudioDeviceTransportTypeBluetoothLE);
  add("Headset", kAudioDeviceTransportTypeBluetooth);
  add("USB b", kAudioDeviceTransportTypeUSB);
  add("USB a", kAudioDeviceTransportTypeUSB);
  const auto speakers = add("Speakers");
  hal.addDevice({.uid = "mic", .name = "Microphone", .outputStreams = {}, .inputStreams = {1}});
  hal.addDevice({.uid = "hidden", .name = "Hidden", .isHidden = true});
  hal.addDevice({.uid = "com.quorvane.mixer.aggregate.1", .name = "Ours"});
  hal.addDevice({.uid = "x.com.quorvane.mixer.aggregate.1", .name = "Not ours"});
  const OutputDevices outputs(hal, system);
  EXPECT_EQ(names(outputs), (Names{"Speakers", "Not ours", "USB b", "USB a", "Buds", "Headset",
                                   "Cinema", "Dock", "Screen", "Aggregate", "Receiver"}));
  EXPECT_EQ(outputs.devices.get().front(),
            (OutputDevice{speakers, "Speakers-uid", "Speakers", "macmini.fill",
                          kAudioDeviceTransportTypeBuiltIn}));
}

TEST_F(OutputDevicesTest, FollowsDevicesAndTheDefaultOne) {
  const auto speakers = add("Speakers");
  OutputDevices outputs(hal, system);
  EXPECT_EQ(outputs.defaultDevice()->name, "Speakers");
  const auto headset = add("Headset", kAudioDeviceTransportTypeBluetooth);
  main.drain();
  EXPECT_EQ(names(outputs), (Names{"Speakers", "Headset"}));
  outputs.choose(outputs.devices.get().back());
  EXPECT_EQ(outputs.defaultDeviceID.get(), headset);
  EXPECT_EQ(systemValue(kAudioHardwarePropertyDefaultSystemOutputDevice), headset);
  hal.removeDevice(headset);
  main.drain();
  EXPECT_EQ(names(outputs), Names{"Speakers"});
  EXPECT_EQ(outputs.defaultDeviceID.get(), speakers);
  hal.removeDevice(speakers);
  main.drain();
  EXPECT_TRUE(outputs.devices.get().empty());
  EXPECT_EQ(outputs.defaultDevice(), std::nullopt);
  EXPECT_EQ(outputs.volume.get(), std::nullopt);
  EXPECT_FALSE(outputs.isMuted.get());
  outputs.setVolume(0.5F);  // nothing to set it on
  outputs.choose({.id = speakers, .uid = "gone", .name = "", .symbol = "", .transport = 0});
  EXPECT_EQ(outputs.defaultDevice(), std::nullopt);
}

TEST_F(OutputDevicesTest, PublishesTheListBeforeTheDefaultBeforeTheVolume) {
  add("Speakers");
  OutputDevices outputs(hal, system);
  std::vector<std::string> order;
  const auto subscriptions = {
      outputs.devices.subscribe([&](const auto&) { order.push_back("devices"); }),
      outputs.defaultDeviceID.subscribe([&](auto) { order.push_back("default"); }),
      outputs.volume.subscribe([&](auto) { order.push_back("volume"); }),
      outputs.isMuted.subscribe([&](bool) { order.push_back("mute"); }),
  };
  outputs.reload();
  EXPECT_EQ(order, (std::vector<std::string>{"devices", "default", "volume", "mute"}));
}

TEST_F(OutputDevicesTest, FollowsVolumeAndMuteOfTheDefaultDeviceOnly) {
  const auto speakers = add("Speakers");
  const auto headset = add("Headset", kAudioDeviceTransportTypeBluetooth);
  OutputDevices outputs(hal, system);
  const auto set = [this](AudioObjectID device, float volume, bool muted) {
    hal.updateDevice(device, [&](SimulatedDevice& facts) {
      facts.volume = volume;
      facts.isMuted = muted;
    });
    main.drain();
  };
  set(speakers, 0.4F, true);
  EXPECT_EQ(outputs.volume.get(), 0.4F);
  EXPECT_TRUE(outputs.isMuted.get());
  const int listeners = hal.liveListeners();
  hal.setDefaultOutput(headset);
  main.drain();
  EXPECT_EQ(outputs.volume.get(), 1.0F);
  EXPECT_FALSE(outputs.isMuted.get());
  int published = 0;
  const auto subscription = outputs.volume.subscribe([&](auto) { ++published; });
  set(speakers, 0.7F, false);
  EXPECT_EQ(published, 0);
  set(headset, 0.2F, true);
  EXPECT_EQ(outputs.volume.get(), 0.2F);
  EXPECT_TRUE(outputs.isMuted.get());
  EXPECT_EQ(hal.liveListeners(), listeners);
}

TEST_F(OutputDevicesTest, HasNoVolumeWithoutASettableMasterVolume) {
  const auto speakers = add("Speakers");
  OutputDevices outputs(hal, system);
  EXPECT_EQ(outputs.volume.get(), 1.0F);
  struct Case {
    std::optional<float> volume;
    bool isSettable;
    std::optional<float> expected;
  };
  for (const auto& [volume, isSettable, expected] :
       {Case{0.5F, false, {}}, Case{{}, true, {}}, Case{0.5F, true, 0.5F}}) {
    hal.updateDevice(speakers, [&](SimulatedDevice& facts) {
      facts.volume = volume;
      facts.hasSettableVolume = isSettable;
      facts.isMuted.reset();
    });
    outputs.reload();
    EXPECT_EQ(outputs.volume.get(), expected);
    EXPECT_FALSE(outputs.isMuted.get());
  }
  hal.faults().add(
      {.call = HalCall::data, .selector = kAudioHardwareServiceDeviceProperty_VirtualMainVolume});
  outputs.reload();
  EXPECT_EQ(outputs.volume.get(), std::nullopt);
}

TEST_F(OutputDevicesTest, SettingAVolumeClampsItAndAboveZeroUnmutes) {
  const auto speakers = add("Speakers");
  OutputDevices outputs(hal, system);
  struct Case {
    float set;
    bool muted;
    float expected;
    bool mutedAfter;
  };
  for (const Case& each :
       {Case{0.3F, true, 0.3F, false}, Case{0, true, 0, true}, Case{-1, true, 0, true},
        Case{7, true, 1, false}, Case{0.5F, false, 0.5F, false}, Case{0, false, 0, false}}) {
    outputs.setMuted(each.muted);
    main.drain();
    EXPECT_EQ(outputs.isMuted.get(), each.muted);
    const int muteWrites = hal.faults().calls(HalCall::setData, kAudioDevicePropertyMute);
    outputs.setVolume(each.set);
    main.drain();
    EXPECT_EQ(hal.device(speakers).volume, each.expected) << each.set;
    EXPECT_EQ(outputs.volume.get(), each.expected) << each.set;
    EXPECT_EQ(hal.device(speakers).isMuted, each.mutedAfter) << each.set;
    EXPECT_EQ(outputs.isMuted.get(), each.mutedAfter) << each.set;
    EXPECT_EQ(hal.faults().calls(HalCall::setData, kAudioDevicePropertyMute) - muteWrites,
              each.muted && !each.mutedAfter ? 1 : 0);
  }
}

TEST_F(OutputDevicesTest, DemoRowsJoinOrReplaceTheRealOnesAndChangeNothing) {
  const auto usb = add("Interface", kAudioDeviceTransportTypeUSB);
  DemoDevices demo;
  const OutputDevice display{1000, "demo-0", "Studio", "display",
                             kAudioDeviceTransportTypeDisplayPort};
  const OutputDevice speakers{1001, "demo-1", "Desk", "speaker.wave.2.fill",
                              kAudioDeviceTransportTypeBuiltIn};
  demo.extra = {display, speakers};
  OutputDevices outputs(hal, system, [&] { return demo; });
  EXPECT_EQ(names(outputs), (Names{"Desk", "Interface", "Studio"}));
  hal.faults().clearCounts();
  outputs.choose(display);
  EXPECT_EQ(hal.faults().allCalls(), 0);
  EXPECT_EQ(systemValue(kAudioHardwarePropertyDefaultOutputDevice), usb);
  demo.hideReal = true;
  outputs.reload();
  EXPECT_EQ(names(outputs), (Names{"Desk", "Studio"}));
  EXPECT_EQ(outputs.defaultDeviceID.get(), usb);
  EXPECT_EQ(outputs.defaultDevice(), std::nullopt);
}

TEST_F(OutputDevicesTest, SurvivesDevicesThatVanishWhileTheyAreRead) {
  const auto speakers = add("Speakers");
  const auto headset = add("Headset", kAudioDeviceTransportTypeBluetooth);
  for (const auto& [call, selector] : std::vector<std::pair<HalCall, AudioObjectPropertySelector>>{
           {HalCall::dataSize, kAudioDevicePropertyStreams},
           {HalCall::data, kAudioDevicePropertyStreams},
           {HalCall::string, kAudioDevicePropertyDeviceUID}}) {
    const auto fleeting = add("Fleeting", kAudioDeviceTransportTypeUSB);
    hal.faults().add(
        {.call = call, .selector = selector, .object = fleeting, .status = noErr, .before = [&] {
           hal.removeDevice(fleeting);
         }});
    OutputDevices outputs(hal, system);
    EXPECT_EQ(names(outputs), (Names{"Speakers", "Headset"})) << describeFourCharCode(selector);
  }
  // The default device goes between being named and being asked for its volume.
  hal.setDefaultOutput(headset);
  hal.faults().add(
      {.call = HalCall::isSettable, .status = noErr, .before = [&] { hal.removeDevice(headset); }});
  OutputDevices outputs(hal, system);
  EXPECT_EQ(outputs.volume.get(), std::nullopt);
  main.drain();
  EXPECT_EQ(outputs.defaultDeviceID.get(), speakers);
  EXPECT_EQ(outputs.volume.get(), 1.0F);
}

TEST_F(OutputDevicesTest, WorksWithoutListenersAndLeavesNoneBehind) {
  add("Speakers");
  { OutputDevices outputs(hal, system); }
  EXPECT_EQ(hal.liveListeners(), 0);
  hal.faults().add({.call = HalCall::addListener, .times = -1});
  OutputDevices outputs(hal, system);
  EXPECT_EQ(hal.liveListeners(), 0);
  add("Headset", kAudioDeviceTransportTypeBluetooth);
  main.drain();
  EXPECT_EQ(names(outputs), Names{"Speakers"});
  outputs.reload();
  EXPECT_EQ(names(outputs), (Names{"Speakers", "Headset"}));
}

}  // namespace
}  // namespace plemora
