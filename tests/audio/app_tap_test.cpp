#include "audio/app_tap.h"

#include <gmock/gmock.h>

#include "audio/audio_world.h"
#include "audio/objects/audio_object.h"
#include "audio/objects/private_devices.h"
#include "audio/playback_devices.h"

namespace plemora {
namespace {

using testing::ElementsAre;

struct AppTapTest : testing::Test {
  AudioWorld world;
  AudioObjectID process = world.play(11, "com.a", "A", world.speakers);
  std::shared_ptr<RenderState> state = std::make_shared<RenderState>(0.25f);

  std::unique_ptr<AppTap> makeTap(const std::string& outputUID = "usb",
                                  const std::string& sourceUID = "speakers") {
    return std::make_unique<AppTap>(world.hal, world.hal, world.clock,
                                    TapDesign{.bundleID = "com.a",
                                              .processObjects = {process},
                                              .outputUID = outputUID,
                                              .sourceUID = sourceUID},
                                    world.queues.makeQueue("com.quorvane.mixer.io"), state);
  }

  std::uint32_t bufferFrames() {
    const auto aggregates = world.hal.liveAggregateIDs();
    return AudioObject(world.hal, aggregates.at(0))
        .readValue<std::uint32_t>(kAudioDevicePropertyBufferFrameSize,
                                  kAudioObjectPropertyScopeGlobal)
        .value_or(0);
  }
};

TEST_F(AppTapTest, builds_a_private_tap_in_a_private_aggregate_device) {
  const auto tap = makeTap();
  ASSERT_TRUE(tap->start(world.usb));

  const auto taps = world.hal.liveTaps();
  ASSERT_EQ(taps.size(), 1u);
  EXPECT_THAT(taps[0].processes, ElementsAre(process));
  EXPECT_EQ(taps[0].deviceUID, "speakers");
  EXPECT_EQ(taps[0].stream, 0);
  EXPECT_EQ(taps[0].name, "Plemora – com.a");
  EXPECT_TRUE(taps[0].isPrivate);
  EXPECT_EQ(taps[0].muteBehavior, TapMuteBehavior::mutedWhenTapped);

  const auto aggregates = world.hal.liveAggregates();
  ASSERT_EQ(aggregates.size(), 1u);
  const AggregateDescription& aggregate = aggregates[0];
  EXPECT_EQ(aggregate.name, "Plemora com.a");
  EXPECT_EQ(aggregate.uid.substr(0, 29), "com.quorvane.mixer.aggregate.");
  EXPECT_EQ(aggregate.uid.size(), 29u + 36u);
  EXPECT_NE(aggregate.uid.substr(29), taps[0].uuid);
  EXPECT_EQ(aggregate.mainUID, "usb");
  EXPECT_EQ(aggregate.clockUID, "usb");
  EXPECT_TRUE(aggregate.isPrivate);
  EXPECT_FALSE(aggregate.isStacked);
  EXPECT_TRUE(aggregate.tapAutoStart);
  ASSERT_EQ(aggregate.subDevices.size(), 1u);
  EXPECT_EQ(aggregate.subDevices[0].uid, "usb");
  EXPECT_FALSE(aggregate.subDevices[0].drift);
  ASSERT_EQ(aggregate.taps.size(), 1u);
  EXPECT_EQ(aggregate.taps[0].uid, taps[0].uuid);
  EXPECT_TRUE(aggregate.taps[0].drift);
  tap->stop();
}

TEST_F(AppTapTest, goes_up_and_down_in_order) {
  using enum HalCall;
  const auto tap = makeTap();
  ASSERT_TRUE(tap->start(world.usb));
  tap->stop();
  EXPECT_THAT(world.hal.faults().journal(),
              ElementsAre(createTap, createAggregate, createIOProc, start, stop, destroyIOProc,
                          destroyAggregate, destroyTap));
  tap->stop();
  EXPECT_EQ(world.hal.faults().journal().size(), 8u) << "stopping again touches nothing";
}

TEST_F(AppTapTest, cleans_up_after_a_failure_at_every_step) {
  using enum HalCall;
  const std::pair<HalCall, bool> cases[] = {{createTap, false},
                                            {createAggregate, false},
                                            {createIOProc, false},
                                            {createIOProc, true},
                                            {start, false}};
  for (const auto& [call, yieldsNothing] : cases) {
    SCOPED_TRACE(testing::Message() << static_cast<int>(call) << yieldsNothing);
    world.hal.faults().add(
        {.call = call, .status = yieldsNothing ? noErr : -66, .yieldsNothing = yieldsNothing});
    auto tap = makeTap();
    EXPECT_FALSE(tap->start(world.usb));
    tap.reset();
    EXPECT_TRUE(world.isClean());
    EXPECT_EQ(world.heardOn(world.speakers), 1.0f) << "the app is heard on its usual path";
  }
}

TEST_F(AppTapTest, survives_properties_that_cannot_be_read_or_written) {
  world.hal.faults().add({.call = HalCall::data, .times = -1});
  world.hal.faults().add({.call = HalCall::dataSize, .times = -1});
  world.hal.faults().add({.call = HalCall::setData, .times = -1});
  const auto tap = makeTap();
  EXPECT_TRUE(tap->start(world.usb));
  world.hal.faults().clear();
  EXPECT_EQ(world.heardOn(world.usb), 0.25f);
  tap->stop();
}

TEST_F(AppTapTest, plays_the_app_at_its_gain_and_lets_go_of_it) {
  const auto tap = makeTap();
  EXPECT_EQ(world.heardOn(world.speakers), 1.0f);
  ASSERT_TRUE(tap->start(world.usb));
  EXPECT_EQ(world.heardOn(world.usb), 0.25f);
  EXPECT_EQ(world.heardOn(world.speakers), 0.0f);
  EXPECT_EQ(takePeak(state->inputPeak), 1.0f);
  EXPECT_EQ(takePeak(state->peak), 0.25f);

  // A new gain is reached by a ramp across one buffer.
  state->targetGain = 0.0f;
  world.hal.step(64);
  const auto ramp = world.hal.heard(world.usb).at(0);
  EXPECT_EQ(ramp.front(), 0.25f);
  EXPECT_NEAR(ramp[32], 0.125f, 1e-5);
  world.hal.step(64);
  EXPECT_THAT(world.hal.heard(world.usb).at(1), testing::Each(0.0f));

  tap->stop();
  EXPECT_EQ(world.heardOn(world.speakers), 1.0f);
  EXPECT_EQ(world.heardOn(world.usb), 0.0f);
}

TEST_F(AppTapTest, keeps_the_render_state_alive_for_its_IO_block) {
  auto tap = makeTap();
  ASSERT_TRUE(tap->start(world.usb));
  const std::weak_ptr<RenderState> watched = state;
  state.reset();
  world.hal.step(64);
  EXPECT_FALSE(watched.expired());
  tap.reset();
  EXPECT_TRUE(watched.expired());
  EXPECT_TRUE(world.isClean());
}

TEST_F(AppTapTest, asks_for_a_small_buffer_within_the_range) {
  struct Case {
    AudioValueRange range;
    std::uint32_t frames;
  };
  const Case cases[] = {
      {{128, 512}, 128}, {{16, 48}, 48}, {{32, 4096}, 64}, {{64, 64}, 64},
      {{1, 64}, 64},     {{65, 65}, 65}, {{14, 14}, 14},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.frames);
    world.hal.updateDevice(world.usb,
                           [&](SimulatedDevice& device) { device.bufferFrameRange = c.range; });
    const auto tap = makeTap();
    ASSERT_TRUE(tap->start(world.usb));
    EXPECT_EQ(bufferFrames(), c.frames);
    tap->stop();
  }
}

// A headset with two microphones in front of the tap: they stay off and are never taken for it.
TEST_F(AppTapTest, skips_and_switches_off_the_inputs_of_the_device) {
  const auto withMicrophones =
      world.hal.addDevice({.uid = "phones",
                           .name = "Phones",
                           .transport = kAudioDeviceTransportTypeUSB,
                           .inputStreams = {1, 2},
                           .inputSource = [](std::uint64_t, std::uint32_t) { return 0.75f; }});
  const auto tap = makeTap("phones");
  ASSERT_TRUE(tap->start(withMicrophones));
  EXPECT_EQ(state->skipInputBuffers, 2);
  EXPECT_EQ(world.heardOn(withMicrophones), 0.25f);

  EXPECT_EQ(world.hal.faults().calls(HalCall::setData, kAudioDevicePropertyIOProcStreamUsage), 1);
  tap->stop();

  // When they cannot be switched off they are still not heard, nor beside a tap cut into channels.
  world.hal.setTapBuffers({1, 1});
  world.hal.faults().add(
      {.call = HalCall::setData, .selector = kAudioDevicePropertyIOProcStreamUsage});
  const auto again = makeTap("phones");
  ASSERT_TRUE(again->start(withMicrophones));
  EXPECT_EQ(world.heardOn(withMicrophones), 0.25f);
  again->stop();
}

TEST_F(AppTapTest, is_the_same_tap_whatever_the_order_of_the_processes) {
  const TapDesign design{"com.a", {1, 2}, "out", "in"};
  EXPECT_TRUE(design.sameTap({"com.a", {2, 1}, "out", "in"}));
  EXPECT_FALSE(design.sameTap({"com.a", {1, 2, 3}, "out", "in"}));
  EXPECT_FALSE(design.sameTap({"com.a", {1, 2}, "other", "in"}));
  EXPECT_FALSE(design.sameTap({"com.a", {1, 2}, "out", "other"}));
}

struct PlaybackDevicesTest : testing::Test {
  AudioWorld world;

  PlaybackDevices of(AudioObjectID device, const std::string& uid) {
    return playbackDevices(world.hal, device, uid);
  }
};

TEST_F(PlaybackDevicesTest, an_ordinary_device_stands_for_itself) {
  const auto result = of(world.usb, "usb");
  EXPECT_THAT(result.devices, ElementsAre(world.usb));
  EXPECT_THAT(result.uids, ElementsAre("usb"));
  EXPECT_EQ(result.main, "usb");
}

TEST_F(PlaybackDevicesTest, an_aggregate_is_taken_apart_into_its_playing_members) {
  const auto microphone =
      world.hal.addDevice({.uid = "mic", .name = "Mic", .outputStreams = {}, .inputStreams = {1}});
  struct Case {
    std::vector<std::string> members;
    std::string main;
    std::vector<std::string> uids;
    std::string expectedMain;
  };
  const Case cases[] = {
      {{"mic", "usb"}, "mic", {"usb"}, "usb"},
      {{"usb", "headset"}, "headset", {"usb", "headset"}, "headset"},
      {{"headset", "usb"}, "gone", {"headset", "usb"}, "headset"},
      {{"mic"}, "mic", {"multi"}, "multi"},
      {{}, "", {"multi"}, "multi"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.members) + " main " + c.main);
    const auto multi = world.hal.addAggregate(
        {.uid = "multi", .name = "Multi", .transport = kAudioDeviceTransportTypeAggregate},
        c.members, c.main);
    const auto result = of(multi, "multi");
    EXPECT_EQ(result.uids, c.uids);
    EXPECT_EQ(result.devices.size(), c.uids.size());
    EXPECT_EQ(result.main, c.expectedMain);
    world.hal.removeDevice(multi);
  }
  world.hal.removeDevice(microphone);
}

TEST_F(PlaybackDevicesTest, a_member_whose_UID_cannot_be_read_is_left_out) {
  const auto multi = world.hal.addAggregate(
      {.uid = "multi", .name = "Multi", .transport = kAudioDeviceTransportTypeAggregate},
      {"usb", "headset"}, "usb");
  world.hal.faults().add({.call = HalCall::string,
                          .selector = kAudioDevicePropertyDeviceUID,
                          .object = world.usb,
                          .times = -1});
  const auto result = of(multi, "multi");
  EXPECT_THAT(result.devices, ElementsAre(world.headset));
  EXPECT_EQ(result.main, "headset");
}

// The user's own multi-output device: every member plays, each corrected towards the main one.
TEST_F(AppTapTest, plays_on_all_members_of_an_aggregate_output) {
  const auto multi = world.hal.addAggregate(
      {.uid = "multi", .name = "Multi", .transport = kAudioDeviceTransportTypeAggregate},
      {"usb", "headset"}, "headset", true);
  const auto tap = makeTap("multi");
  ASSERT_TRUE(tap->start(multi));
  const auto aggregate = world.hal.liveAggregates().at(0);
  EXPECT_EQ(aggregate.mainUID, "headset");
  ASSERT_EQ(aggregate.subDevices.size(), 2u);
  EXPECT_TRUE(aggregate.subDevices[0].drift);
  EXPECT_FALSE(aggregate.subDevices[1].drift);
  EXPECT_EQ(world.heardOn(world.usb), 0.25f);
  EXPECT_EQ(world.heardOn(world.headset), 0.25f);
  tap->stop();
}

}  // namespace
}  // namespace plemora
