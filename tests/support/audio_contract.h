#pragma once

#include <thread>

#include "support/audio_contract_rig.h"

// What every adapter of AudioProperties and AudioGraph must do. Include it in one source of a test
// program, and instantiate it:
//   INSTANTIATE_TEST_SUITE_P(Mine, AudioContract, testing::Values(AudioWorldFactory{"mine",
//   make}));

namespace plemora {

TEST_P(AudioContract, RefusesObjectsAndPropertiesThatAreNotThere) {
  auto& properties = world->properties();
  const AudioObjectPropertyAddress addresses[] = {
      {kAudioHardwarePropertyDevices, global, 0},               // of another kind of object
      {fourCharCode("xyzw"), global, 0},                        // of none
      {kAudioHardwarePropertyDefaultOutputDevice, global, 77},  // another element
  };
  for (const AudioObjectID id : {nobody, kAudioObjectUnknown, kAudioObjectSystemObject}) {
    for (const auto& address : addresses) {
      if (id == kAudioObjectSystemObject && &address == addresses) {
        continue;
      }
      SCOPED_TRACE(std::to_string(id) + " " + describeFourCharCode(address.mSelector));
      std::size_t size = 4;
      std::uint32_t value = 4711;
      std::optional<std::string> text = "kept";
      EXPECT_NE(properties.dataSize(id, address, size), noErr);
      EXPECT_NE(properties.data(id, address, size, &value), noErr);
      EXPECT_NE(properties.string(id, address, text), noErr);
      EXPECT_EQ(size, 4U);
      EXPECT_EQ(value, 4711U);
      EXPECT_EQ(text, "kept");
      EXPECT_NE(properties.setData(id, address, sizeof value, &value), noErr);
      EXPECT_EQ(properties.isSettable(id, address), std::nullopt);
    }
  }
  EXPECT_FALSE(watch(nobody, kAudioDevicePropertyMute, output, [] {}));
}

TEST_P(AudioContract, DescribesADevice) {
  std::string uid;
  const AudioObjectID id = makeDevice("Contract One", &uid);
  ASSERT_NE(id, kAudioObjectUnknown);
  const AudioObject device = object(id);
  EXPECT_EQ(device.getString(kAudioDevicePropertyDeviceUID, global), uid);
  EXPECT_EQ(device.getString(kAudioObjectPropertyName, global), "Contract One");
  EXPECT_FALSE(device.getArray(kAudioDevicePropertyStreams, output).empty());
  EXPECT_TRUE(device.readValue<FourCharCode>(kAudioDevicePropertyTransportType, global));
  EXPECT_EQ(device.readValue<std::uint32_t>(kAudioDevicePropertyIsHidden, global).value_or(0), 0U);
  // Text is no data and data is no text.
  std::optional<std::string> text;
  EXPECT_NE(world->properties().string(id, {kAudioDevicePropertyTransportType, global, 0}, text),
            noErr);
}

TEST_P(AudioContract, FillsNoMoreThanTheBufferGiven) {
  makeDevice("One");
  makeDevice("Two");
  const AudioObjectPropertyAddress list{kAudioHardwarePropertyDevices, global, 0};
  std::size_t size = 0;
  ASSERT_EQ(world->properties().dataSize(kAudioObjectSystemObject, list, size), noErr);
  EXPECT_GE(size, 2 * sizeof(AudioObjectID));
  EXPECT_EQ(size % sizeof(AudioObjectID), 0U);
  AudioObjectID ids[2] = {0, 4711};
  size = sizeof ids[0];
  ASSERT_EQ(world->properties().data(kAudioObjectSystemObject, list, size, ids), noErr);
  EXPECT_EQ(size, sizeof ids[0]);
  EXPECT_EQ(ids[0], system().getArray(kAudioHardwarePropertyDevices, global).front());
  EXPECT_EQ(ids[1], 4711U);
}

TEST_P(AudioContract, TellsOfDevicesThatComeAndGoAndNeverReusesTheirIds) {
  int changes = 0;
  const auto token =
      watch(kAudioObjectSystemObject, kAudioHardwarePropertyDevices, global, [&] { ++changes; });
  ASSERT_TRUE(token);
  std::string uid;
  const AudioObjectID first = makeDevice("Fleeting", &uid);
  EXPECT_TRUE(world->waitUntil([&] { return changes > 0; }));
  world->removeDevice(uid);
  EXPECT_TRUE(world->waitUntil([&] { return findDevice(uid) == kAudioObjectUnknown; }));
  EXPECT_FALSE(object(first).getString(kAudioDevicePropertyDeviceUID, global));
  const int before = changes;
  const AudioObjectID second = makeDevice("Fleeting");
  EXPECT_TRUE(world->waitUntil([&] { return changes > before; }));
  EXPECT_NE(second, first);
}

TEST_P(AudioContract, WritesTheDefaultDeviceVolumeAndMuteAndTells) {
  const AudioObjectID one = makeDevice("One");
  const AudioObjectID two = makeDevice("Two");
  for (const AudioObjectID id : {two, one}) {
    ASSERT_EQ(system().write(kAudioHardwarePropertyDefaultOutputDevice, global, id), noErr);
    EXPECT_TRUE(world->waitUntil([&] {
      return system().readValue<AudioObjectID>(kAudioHardwarePropertyDefaultOutputDevice, global) ==
             id;
    }));
  }
  EXPECT_NE(system().write(kAudioHardwarePropertyDefaultOutputDevice, global, nobody), noErr);

  constexpr auto volume = kAudioHardwareServiceDeviceProperty_VirtualMainVolume;
  EXPECT_EQ(world->properties().isSettable(one, {volume, output, 0}), true);
  EXPECT_EQ(world->properties().isSettable(one, {kAudioDevicePropertyStreams, output, 0}), false);
  int changes = 0;
  const auto count = [&] { ++changes; };
  const auto volumeToken = watch(one, volume, output, count);
  ASSERT_TRUE(volumeToken);
  ASSERT_EQ(object(one).write(volume, output, 0.3F), noErr);
  EXPECT_TRUE(world->waitUntil([&] { return changes > 0; }));
  EXPECT_NEAR(object(one).readValue<float>(volume, output).value_or(-1), 0.3F, 0.001F);
  const auto muteToken = watch(one, kAudioDevicePropertyMute, output, count);
  ASSERT_TRUE(muteToken);
  for (const std::uint32_t muted : {1U, 0U}) {
    changes = 0;
    ASSERT_EQ(object(one).write(kAudioDevicePropertyMute, output, muted), noErr);
    EXPECT_TRUE(world->waitUntil([&] { return changes > 0; }));
    EXPECT_EQ(object(one).readValue<std::uint32_t>(kAudioDevicePropertyMute, output), muted);
  }
  EXPECT_NEAR(object(one).readValue<float>(volume, output).value_or(-1), 0.3F, 0.001F);
}

TEST_P(AudioContract, ListsAPlayingProcess) {
  std::string uid;
  const AudioObjectID device = makeDevice("Speakers", &uid);
  int changes = 0;
  const auto token = watch(kAudioObjectSystemObject, kAudioHardwarePropertyProcessObjectList,
                           global, [&] { ++changes; });
  ASSERT_TRUE(token);
  const std::int32_t pid = world->startPlayer(uid, 0.5F);
  ASSERT_TRUE(world->waitUntil([&] { return isRunning(findProcess(pid)); }));
  const AudioObjectID process = findProcess(pid);
  EXPECT_GT(changes, 0);
  EXPECT_TRUE(
      world->waitUntil([&] { return devicesOf(process) == std::vector<AudioObjectID>{device}; }));
  EXPECT_NEAR(world->listenTo(uid), 0.5F, 0.5F * world->accuracy());
  world->stopPlayer(pid);
  EXPECT_TRUE(world->waitUntil([&] { return findProcess(pid) == kAudioObjectUnknown; }));
  EXPECT_TRUE(devicesOf(process).empty());
}

TEST_P(AudioContract, CallsListenersOnlyWhileTheyAreHeldAndOnlyOnTheMainThread) {
  const AudioObjectID device = makeDevice("Speakers");
  const auto mainThread = std::this_thread::get_id();
  int kept = 0;
  int dropped = 0;
  int once = 0;
  bool isMain = true;
  const auto mute = [&](std::uint32_t value) {
    EXPECT_EQ(object(device).write(kAudioDevicePropertyMute, output, value), noErr);
  };
  mute(0);
  world->settle();

  const auto watchMute = [&](std::function<void()> callback) {
    return watch(device, kAudioDevicePropertyMute, output, std::move(callback));
  };
  std::optional<AudioListenerToken> selfDropping;
  selfDropping = watchMute([&] {
    ++once;
    selfDropping.reset();
  });
  auto droppedToken = watchMute([&] { ++dropped; });
  const auto keptToken = watchMute([&] {
    ++kept;
    isMain = isMain && std::this_thread::get_id() == mainThread;
  });
  ASSERT_TRUE(selfDropping && droppedToken && keptToken);

  std::thread([&] { mute(1); }).join();
  droppedToken.reset();  // a notification may already be on its way
  EXPECT_TRUE(world->waitUntil([&] { return kept > 0 && once > 0; }));
  mute(0);
  const int before = kept;
  EXPECT_TRUE(world->waitUntil([&] { return kept > before; }));
  world->settle();
  EXPECT_EQ(dropped, 0);
  EXPECT_EQ(once, 1);
  EXPECT_TRUE(isMain);
}

TEST_P(AudioContract, LetsAListenerGoAfterItsObjectHasVanished) {
  std::string uid;
  const AudioObjectID device = makeDevice("Fleeting", &uid);
  int calls = 0;
  auto token = watch(device, kAudioDevicePropertyMute, output, [&] { ++calls; });
  ASSERT_TRUE(token);
  world->removeDevice(uid);
  EXPECT_TRUE(world->waitUntil([&] { return findDevice(uid) == kAudioObjectUnknown; }));
  token.reset();
  const int before = calls;
  makeDevice("Another");
  world->settle();
  EXPECT_EQ(calls, before);
}

TEST_P(AudioContract, ReadsFromOtherThreadsWhileTheWorldChanges) {
  std::atomic<bool> isDone = false;
  std::atomic<int> unreadable = 0;
  std::thread reader([&] {
    while (!isDone) {
      const auto ids = system().getArray(kAudioHardwarePropertyDevices, global);
      for (const auto id : ids) {
        // It may have vanished since, but never answers with the text of another kind.
        const auto uid = object(id).getString(kAudioDevicePropertyDeviceUID, global);
        unreadable += uid && uid->empty() ? 1 : 0;
      }
    }
  });
  for (int i = 0; i < 5; ++i) {
    std::string uid;
    makeDevice("Fleeting", &uid);
    world->removeDevice(uid);
  }
  isDone = true;
  reader.join();
  EXPECT_EQ(unreadable, 0);
}

TEST_P(AudioContract, PlaysATappedProcessThroughItsIOProc) {
  std::string uid;
  makeDevice("Speakers", &uid);
  const std::int32_t pid = world->startPlayer(uid, 0.5F);
  ASSERT_TRUE(world->waitUntil([&] { return isRunning(findProcess(pid)); }));
  const auto hear = [&](float expected) {
    EXPECT_NEAR(world->listenTo(uid), expected, 0.5F * world->accuracy());
  };
  hear(0.5F);
  {
    ContractTap tap(*world, findProcess(pid), uid, uid, "11111111-0000-4000-8000-000000000001");
    hear(0.5F);  // nobody reads the tap yet
    EXPECT_EQ(tap.cycles, 0);
    tap.gain = 0.25F;
    ASSERT_EQ(world->graph().start(tap.device, tap.proc), noErr);
    hear(0.125F);
    tap.gain = 0.0F;
    hear(0.0F);
    EXPECT_GT(tap.cycles, 0);
    ASSERT_EQ(world->graph().stop(tap.device, tap.proc), noErr);
    hear(0.5F);
    tap.gain = 1.0F;
    ASSERT_EQ(world->graph().start(tap.device, tap.proc), noErr);
    hear(0.5F);
    ASSERT_EQ(world->graph().destroyIOProc(tap.device, tap.proc), noErr);
    const int cycles = tap.cycles;
    hear(0.5F);
    EXPECT_EQ(tap.cycles, cycles);
  }
  hear(0.5F);
}

TEST_P(AudioContract, RoutesATappedProcessToAnotherDeviceAndBack) {
  std::string sourceUID;
  std::string targetUID;
  const AudioObjectID source = makeDevice("Source", &sourceUID);
  makeDevice("Target", &targetUID);
  const std::int32_t pid = world->startPlayer(sourceUID, 0.5F);
  ASSERT_TRUE(world->waitUntil([&] { return isRunning(findProcess(pid)); }));
  const AudioObjectID process = findProcess(pid);
  const auto hear = [&](float atSource, float atTarget) {
    EXPECT_NEAR(world->listenTo(sourceUID), atSource, 0.5F * world->accuracy());
    EXPECT_NEAR(world->listenTo(targetUID), atTarget, 0.5F * world->accuracy());
  };
  {
    ContractTap tap(*world, process, sourceUID, targetUID, "11111111-0000-4000-8000-000000000002");
    tap.gain = 0.5F;
    ASSERT_EQ(world->graph().start(tap.device, tap.proc), noErr);
    hear(0.0F, 0.25F);
    // The app still counts as playing to the device that it chose itself.
    EXPECT_EQ(devicesOf(process), std::vector<AudioObjectID>{source});
  }
  hear(0.5F, 0.0F);
}

TEST_P(AudioContract, RefusesWhatTheGraphDoesNotHold) {
  auto& graph = world->graph();
  EXPECT_NE(graph.destroyProcessTap(nobody), noErr);
  EXPECT_NE(graph.destroyAggregateDevice(nobody), noErr);
  AudioDeviceIOProcID proc = nullptr;
  EXPECT_NE(graph.createIOProc(
                nobody, world->makeIOQueue(), [](auto, auto) {}, proc),
            noErr);
  EXPECT_EQ(proc, nullptr);
  EXPECT_NE(graph.start(nobody, nullptr), noErr);
  EXPECT_NE(graph.stop(nobody, nullptr), noErr);
  EXPECT_NE(graph.destroyIOProc(nobody, nullptr), noErr);

  std::string uid;
  const AudioObjectID real = makeDevice("Speakers", &uid);
  EXPECT_NE(graph.destroyAggregateDevice(real), noErr);
  EXPECT_EQ(findDevice(uid), real);
  AggregateDescription description;
  description.uid = "com.quorvane.mixer.aggregate.contract";
  description.mainUID = description.clockUID = uid;
  description.subDevices = {{uid, false}};
  description.taps = {{"no-such-tap", true}};
  AudioObjectID device = kAudioObjectUnknown;
  EXPECT_NE(graph.createAggregateDevice(description, device), noErr);
  EXPECT_EQ(device, kAudioObjectUnknown);
}

}  // namespace plemora
