#include <gmock/gmock.h>

#include <random>

#include "audio/audio_world.h"

namespace plemora {
namespace {

/// A random life of three apps on three devices: levels, routes, processes, devices and the
/// default device change, and the queues run a little or to the end.
struct RandomWalk {
  static constexpr const char* ids[] = {"com.a", "com.b", "com.c"};
  AudioWorld world;
  std::mt19937 random;
  std::map<std::string, AudioObjectID> processes;
  std::map<std::string, Level> expected;

  explicit RandomWalk(unsigned seed) : random(seed) {
    int pid = 11;
    for (const char* id : ids) {
      processes[id] = world.play(pid++, id, id, world.speakers);
    }
    world.start();
  }

  std::size_t pick(std::size_t count) { return random() % count; }
  AudioObjectID anyDevice() {
    return std::array{world.speakers, world.usb, world.headset}[pick(3)];
  }

  void step() {
    MixerModel& mixer = *world.mixer;
    const std::string id = ids[pick(3)];
    switch (pick(9)) {
      case 0:
      case 1: {
        const float volume = std::array{0.0f, 0.5f, 0.75f, 1.0f}[pick(4)];
        mixer.setVolume(volume, id);
        expected[id].volume = volume;
        expected[id].muted = expected[id].muted && volume == 0;
        break;
      }
      case 2:
        mixer.toggleMute(id);
        expected[id].muted = !expected[id].muted;
        break;
      case 3:
        mixer.setOutput(std::array{"speakers", "usb", "headset", "gone"}[pick(4)], id);
        break;
      case 4:
        world.hal.updateProcess(processes[id],
                                [&](SimulatedProcess& p) { p.devices = {anyDevice()}; });
        break;
      case 5:
        world.hal.updateProcess(
            processes[id], [&](SimulatedProcess& p) { p.isRunningOutput = !p.isRunningOutput; });
        break;
      case 6:
        world.hal.setDefaultOutput(anyDevice());
        break;
      case 7: {
        const auto facts = world.hal.device(world.headset);
        world.hal.removeDevice(world.headset);
        if (pick(2) == 0) {
          world.pass(0.05);
        }
        world.headset = world.hal.addDevice(facts);
        break;
      }
      default:
        world.hal.removeProcess(processes[id]);
        processes[id] = world.play(static_cast<std::int32_t>(11 + pick(3)), id, id, anyDevice());
        break;
    }
    switch (pick(4)) {
      case 0:
        world.queues.runNext();
        break;
      case 1:
        world.main.drain();
        break;
      case 2:
        world.pass(0.2);
        break;
      default:
        break;
    }
    world.hal.step(64);
  }

  void walk(int steps) {
    for (int i = 0; i < steps; ++i) {
      step();
    }
  }

  /// Once nothing fails any more and every app has been looked at, all is as it should be.
  void expectRight() {
    world.hal.faults().clear();
    world.pass(1);
    for (const char* id : ids) {
      world.mixer->toggleMute(id);
      world.mixer->toggleMute(id);
    }
    world.pass(1);
    world.mixer->publish();
    const auto taps = world.hal.liveTaps();
    EXPECT_EQ(world.hal.liveAggregates().size(), taps.size());
    EXPECT_EQ(world.hal.liveProcs(), static_cast<int>(taps.size()));
    EXPECT_EQ(world.hal.runningProcs(), static_cast<int>(taps.size()));
    for (const AppChannel& row : world.mixer->channels.get()) {
      SCOPED_TRACE(row.id);
      EXPECT_EQ(row.volume, expected[row.id].volume);
      EXPECT_EQ(row.isMuted, expected[row.id].muted);
      const bool needsTap = expected[row.id].gain() < 0.999f || row.isRouted;
      EXPECT_EQ(std::ranges::count(taps, "Plemora – " + row.id, &TapDescription::name),
                needsTap ? 1 : 0);
    }
    world.mixer.reset();
    EXPECT_TRUE(world.isClean());
    EXPECT_EQ(world.hal.liveListeners(), 0);
    EXPECT_EQ(world.main.pendingTimers(), 0);
  }
};

TEST(MixerFaults, keeps_everything_right_through_a_random_life) {
  for (unsigned seed = 0; seed < 30; ++seed) {
    SCOPED_TRACE(seed);
    RandomWalk walk(seed);
    walk.walk(150);
    walk.expectRight();
  }
}

// One call of each kind fails, the first, the second, ... of each kind in turn.
TEST(MixerFaults, survives_each_call_failing_in_turn) {
  using enum HalCall;
  for (const HalCall call :
       {dataSize, data, string, setData, isSettable, addListener, removeListener, createTap,
        destroyTap, createAggregate, destroyAggregate, createIOProc, destroyIOProc, HalCall::start,
        HalCall::stop}) {
    for (int nth = 0; nth < 12; ++nth) {
      SCOPED_TRACE(testing::Message() << "call " << static_cast<int>(call) << ", failure " << nth);
      RandomWalk walk(static_cast<unsigned>(nth));
      walk.walk(5 * nth);
      walk.world.hal.faults().add({.call = call});
      walk.walk(60);
      if (call == destroyTap || call == destroyAggregate || call == destroyIOProc ||
          call == removeListener) {
        continue;  // what the HAL refuses to destroy stays; that nothing crashes is enough
      }
      walk.expectRight();
    }
  }
}

TEST(MixerFaults, survives_a_HAL_in_which_half_of_the_calls_fail) {
  using enum HalCall;
  for (unsigned seed = 0; seed < 10; ++seed) {
    SCOPED_TRACE(seed);
    RandomWalk walk(seed);
    for (int round = 0; round < 40; ++round) {
      for (const HalCall call :
           {data, string, createTap, createAggregate, createIOProc, HalCall::start}) {
        if (walk.pick(2) == 0) {
          walk.world.hal.faults().add({.call = call, .times = static_cast<int>(walk.pick(3)) + 1});
        }
      }
      walk.walk(4);
    }
    walk.expectRight();
  }
}

// Devices and processes vanish in the middle of a build.
TEST(MixerFaults, survives_objects_that_vanish_during_a_call) {
  using enum HalCall;
  for (const HalCall call : {createTap, createAggregate, createIOProc, HalCall::start, data}) {
    for (const bool device : {true, false}) {
      SCOPED_TRACE(testing::Message() << static_cast<int>(call) << device);
      AudioWorld world;
      const auto process = world.play(11, "com.a", "A", world.speakers);
      MixerModel& mixer = world.start();
      mixer.setOutput("usb", "com.a");
      world.hal.faults().add({.call = call, .status = noErr, .before = [&] {
                                if (device) {
                                  world.hal.removeDevice(world.usb);
                                } else {
                                  world.hal.removeProcess(process);
                                }
                              }});
      world.pass(1);
      if (device) {
        EXPECT_FALSE(world.row("com.a")->isRouted);
        EXPECT_EQ(world.heardOn(world.speakers), 1.0f);
      } else {
        EXPECT_TRUE(world.rowNames().empty());
      }
      EXPECT_TRUE(world.isClean());
    }
  }
}

}  // namespace
}  // namespace plemora
