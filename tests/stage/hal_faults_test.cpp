#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "adapters/stage/simulated_hal.h"
#include "adapters/stage/virtual_clock.h"
#include "adapters/stage/virtual_main_queue.h"
#include "audio/objects/audio_listener_token.h"
#include "audio/objects/audio_object.h"
#include "platform/audio_constants.h"

namespace plemora {
namespace {

constexpr auto global = kAudioObjectPropertyScopeGlobal;
constexpr auto output = kAudioObjectPropertyScopeOutput;

class HalFaultsTest : public testing::Test {
 protected:
  HalFaultsTest() {
    SimulatedDevice facts;
    facts.uid = "speakers";
    device = hal.addDevice(facts);
  }

  std::optional<std::string> uid() {
    return AudioObject(hal, device).getString(kAudioDevicePropertyDeviceUID, global);
  }
  auto watch(AudioObjectID object, AudioObjectPropertySelector selector,
             AudioObjectPropertyScope scope, int& calls) {
    return listen(hal, object, selector, scope, 0, [&calls] { ++calls; });
  }

  VirtualClock clock;
  VirtualMainQueue main{clock};
  SimulatedHal hal{main};
  AudioObjectID device = 0;
};

TEST_F(HalFaultsTest, FailACallSoManyTimesOrAlwaysAndOnlyThatOne) {
  hal.faults().add(
      {.call = HalCall::string, .selector = kAudioDevicePropertyDeviceUID, .times = 2});
  EXPECT_FALSE(uid());
  EXPECT_FALSE(uid());
  EXPECT_EQ(uid(), "speakers");
  hal.faults().add({.call = HalCall::string, .object = device + 1, .times = -1});
  EXPECT_EQ(uid(), "speakers");
  hal.faults().add({.call = HalCall::string, .status = kAudioHardwareBadDeviceError, .times = -1});
  std::optional<std::string> text;
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(hal.string(device, {kAudioDevicePropertyDeviceUID, global, 0}, text),
              kAudioHardwareBadDeviceError);
  }
  hal.faults().clear();
  EXPECT_EQ(uid(), "speakers");
  EXPECT_EQ(hal.faults().calls(HalCall::string, kAudioDevicePropertyDeviceUID), 8);
}

TEST_F(HalFaultsTest, EveryGraphCallCanFailOrYieldNothingAndLeavesNothingBehind) {
  const AudioObjectID process = hal.addProcess({.pid = 9, .devices = {device}, .source = {}});
  for (const bool yieldsNothing : {false, true}) {
    for (const HalCall call :
         {HalCall::createTap, HalCall::createAggregate, HalCall::createIOProc}) {
      hal.faults().add({.call = call, .yieldsNothing = yieldsNothing});
      TapDescription tap;
      tap.processes = {process};
      tap.deviceUID = "speakers";
      tap.uuid = "uuid";
      AudioObjectID id = 0;
      const OSStatus tapStatus = hal.createProcessTap(tap, id);
      AggregateDescription aggregate;
      aggregate.uid = "ours";
      aggregate.mainUID = "speakers";
      aggregate.subDevices = {{"speakers", false}};
      AudioObjectID aggregateID = 0;
      const OSStatus aggregateStatus = hal.createAggregateDevice(aggregate, aggregateID);
      AudioDeviceIOProcID proc = nullptr;
      const OSStatus procStatus = hal.createIOProc(
          device, nullptr, [](auto, auto) {}, proc);
      EXPECT_EQ(id == 0, call == HalCall::createTap);
      EXPECT_EQ(aggregateID == 0, call == HalCall::createAggregate);
      EXPECT_EQ(proc == nullptr, call == HalCall::createIOProc);
      EXPECT_EQ(tapStatus != noErr || aggregateStatus != noErr || procStatus != noErr,
                !yieldsNothing);
      EXPECT_EQ(hal.liveTaps().size(), id == 0 ? 0U : 1U);
      EXPECT_EQ(hal.liveAggregates().size(), aggregateID == 0 ? 0U : 1U);
      EXPECT_EQ(hal.liveProcs(), proc ? 1 : 0);
      hal.destroyIOProc(device, proc);
      hal.destroyAggregateDevice(aggregateID);
      hal.destroyProcessTap(id);
    }
  }
  EXPECT_EQ(hal.faults().calls(HalCall::destroyTap), 6);
  hal.faults().clearCounts();
  hal.faults().add({.call = HalCall::start});
  EXPECT_NE(hal.start(device, nullptr), noErr);
  EXPECT_NE(hal.stop(device, nullptr), noErr);
  EXPECT_EQ(hal.faults().journal(), (std::vector{HalCall::start, HalCall::stop}));
}

TEST_F(HalFaultsTest, AnObjectMayVanishDuringACall) {
  hal.faults().add({.call = HalCall::data,
                    .selector = kAudioDevicePropertyStreams,
                    .status = noErr,
                    .before = [this] { hal.removeDevice(device); }});
  const AudioObject object(hal, device);
  EXPECT_TRUE(object.getArray(kAudioDevicePropertyStreams, output).empty());
  EXPECT_EQ(hal.defaultOutput(), kAudioObjectUnknown);
}

TEST_F(HalFaultsTest, NotificationsComeInStormsAndAfterTheObject) {
  int calls = 0;
  const auto token = watch(device, kAudioDevicePropertyMute, output, calls);
  hal.notify(device, {kAudioDevicePropertyMute, output, 0}, 1000);
  EXPECT_EQ(calls, 0);
  main.drain();
  EXPECT_EQ(calls, 1000);
  hal.removeDevice(device);
  hal.notify(device, {kAudioDevicePropertyMute, output, 0});
  main.drain();
  EXPECT_EQ(calls, 1001);
  EXPECT_EQ(hal.liveListeners(), 1);
}

TEST_F(HalFaultsTest, AChangeTellsOfWhatChangedAndOfNothingElse) {
  int volume = 0;
  int mute = 0;
  int source = 0;
  int devices = 0;
  int chosen = 0;
  const auto tokens = {
      watch(device, kAudioDevicePropertyVolumeScalar, output, volume),
      watch(device, kAudioDevicePropertyMute, output, mute),
      watch(device, kAudioDevicePropertyDataSource, output, source),
      watch(1, kAudioHardwarePropertyDevices, global, devices),
      watch(1, kAudioHardwarePropertyDefaultOutputDevice, global, chosen),
  };
  const AudioObject object(hal, device);
  object.write(kAudioHardwareServiceDeviceProperty_VirtualMainVolume, output, 0.5F);
  object.write(kAudioHardwareServiceDeviceProperty_VirtualMainVolume, output, 0.5F);
  hal.updateDevice(device, [](SimulatedDevice& facts) { facts.dataSource = 1; });
  hal.updateDevice(device, [](SimulatedDevice& facts) { facts.dataSource.reset(); });
  main.drain();
  EXPECT_EQ((std::vector{volume, mute, source, devices, chosen}), (std::vector{1, 0, 2, 0, 0}));
  SimulatedDevice facts;
  facts.uid = "other";
  const auto other = hal.addDevice(facts);
  hal.removeDevice(device);  // the default goes to the one that is left
  main.drain();
  EXPECT_EQ((std::vector{devices, chosen}), (std::vector{2, 1}));
  EXPECT_EQ(hal.defaultOutput(), other);
}

TEST_F(HalFaultsTest, RefusesValuesThatDoNotFit) {
  const AudioObject object(hal, device);
  hal.updateDevice(device, [](SimulatedDevice& facts) {
    facts.hasSettableVolume = false;
    facts.isMuted.reset();
    facts.bufferFrameRange = {128, 512};
  });
  const auto wrongSize = std::uint8_t{1};
  EXPECT_EQ(object.write(kAudioHardwareServiceDeviceProperty_VirtualMainVolume, output, 0.5F),
            kAudioHardwareUnsupportedOperationError);
  EXPECT_EQ(object.write(kAudioDevicePropertyMute, output, 1U), kAudioHardwareUnknownPropertyError);
  EXPECT_EQ(object.write(kAudioDevicePropertyBufferFrameSize, global, 64U),
            kAudioHardwareIllegalOperationError);
  EXPECT_EQ(object.write(kAudioDevicePropertyBufferFrameSize, global, wrongSize),
            kAudioHardwareBadPropertySizeError);
  EXPECT_EQ(object.write(kAudioDevicePropertyBufferFrameSize, global, 128U), noErr);
  EXPECT_EQ(hal.device(device).bufferFrames, 128U);
  EXPECT_EQ(hal.device(device).volume, 1.0F);
}

}  // namespace
}  // namespace plemora
