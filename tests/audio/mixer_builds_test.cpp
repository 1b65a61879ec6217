#include <gmock/gmock.h>

#include "audio/mixer_fixture.h"

// Builds of taps that take their time, fail, or are overtaken by what is asked meanwhile.

namespace plemora {
namespace {

using testing::ElementsAre;

using MixerBuildsTest = MixerTest;

TEST_F(MixerBuildsTest, never_stores_a_build_whose_app_has_been_discarded) {
  MixerModel& mixer = startWithPlayer();
  mixer.setVolume(0.5f, player);  // the build waits on the queue
  mixer.setVolume(1.0f, player);
  world.settle();
  EXPECT_TRUE(world.isClean());
  EXPECT_EQ(world.heardOn(world.speakers), 1.0f);

  mixer.setVolume(0.5f, player);
  ASSERT_TRUE(tapQueue()->runNext());  // built, but the main queue has not heard of it
  EXPECT_EQ(world.hal.liveTaps().size(), 1u);
  mixer.setVolume(1.0f, player);
  world.settle();
  EXPECT_TRUE(world.isClean());
}

TEST_F(MixerBuildsTest, catches_up_with_what_was_asked_during_a_build) {
  MixerModel& mixer = startWithPlayer();
  mixer.setVolume(0.5f, player);
  mixer.setVolume(0.1f, player);
  mixer.setOutput("usb", player);
  world.settle();
  EXPECT_EQ(builds(), 2) << "the first design, then the last; nothing in between";
  EXPECT_EQ(world.hal.liveTaps().size(), 1u);
  EXPECT_FLOAT_EQ(world.heardOn(world.usb), 0.01f);

  // Discarded and wanted again while the build runs: that build is stale, a new one follows.
  mixer.setOutput(std::nullopt, player);
  mixer.setVolume(1.0f, player);
  world.settle();
  ASSERT_TRUE(world.isClean());
  mixer.setVolume(0.5f, player);
  mixer.setVolume(1.0f, player);
  mixer.setVolume(0.25f, player);
  world.settle();
  EXPECT_EQ(world.hal.liveTaps().size(), 1u);
  EXPECT_EQ(world.heardOn(world.speakers), 0.0625f);
}

TEST_F(MixerBuildsTest, never_overlaps_builds_of_one_app) {
  MixerModel& mixer = startWithPlayer();
  mixer.setVolume(0.5f, player);
  for (const char* uid : {"usb", "headset", "usb", "headset"}) {
    mixer.setOutput(uid, player);
    world.pass(0.2);
    EXPECT_EQ(world.hal.liveTaps().size(), 1u);
  }
  EXPECT_EQ(world.heardOn(world.headset), 0.25f);
}

TEST_F(MixerBuildsTest, does_not_repeat_a_failed_build_by_itself) {
  MixerModel& mixer = startWithPlayer();
  world.hal.faults().add({.call = HalCall::start, .times = -1});
  mixer.setVolume(0.5f, player);
  world.pass(60);
  EXPECT_EQ(builds(), 1);
  EXPECT_TRUE(world.isClean());
  EXPECT_THAT(world.rowNames(), ElementsAre("Player"));
  EXPECT_EQ(world.heardOn(world.speakers), 1.0f) << "it plays unchanged";

  mixer.setVolume(0.4f, player);  // a level change tries again, and so does a device change
  world.pass(60);
  EXPECT_EQ(builds(), 2);
  world.hal.setDefaultOutput(world.usb);
  world.pass(60);
  EXPECT_EQ(builds(), 3);
  world.hal.faults().clear();
  const auto extra = world.play(12, "com.other", "Other", world.speakers);
  world.pass(60);  // and a scan that finds something new
  EXPECT_EQ(builds(), 4);
  EXPECT_EQ(world.hal.liveTaps().size(), 1u);
  world.hal.removeProcess(extra);
}

TEST_F(MixerBuildsTest, can_go_at_any_moment_of_a_build) {
  for (int moment = 0; moment < 4; ++moment) {
    SCOPED_TRACE(moment);
    if (moment == 0) {
      startWithPlayer();
    } else {
      world.start();
    }
    world.mixer->setVolume(0.5f, player);
    world.mixer->setVolume(1.0f, player);
    world.mixer->setVolume(0.3f + 0.1f * static_cast<float>(moment), player);
    if (moment == 1) {
      world.queues.runNext();  // built, the main queue has not heard of it
    } else if (moment == 2) {
      world.queues.runNext();
      world.main.drain();  // a stale build has ended and another one waits
    } else if (moment == 3) {
      world.settle();  // running
    }
    world.mixer.reset();
    EXPECT_TRUE(world.isClean()) << "everything is gone as soon as the mixer is";
    world.settle();
    EXPECT_TRUE(world.isClean());
    EXPECT_EQ(world.hal.liveListeners(), 0);
    EXPECT_EQ(world.heardOn(world.speakers), 1.0f);
  }
}

TEST_F(MixerBuildsTest, builds_no_tap_without_any_output_device) {
  for (const AudioObjectID device : {world.speakers, world.usb, world.headset}) {
    world.hal.removeDevice(device);
  }
  world.play(11, player, "Player", std::nullopt);
  MixerModel& mixer = world.start();
  mixer.setVolume(0.5f, player);
  world.pass(1);
  EXPECT_EQ(builds(), 0);
  EXPECT_EQ(world.row(player)->outputSymbol, "speaker.wave.2.fill");
  world.speakers = world.hal.addDevice({.uid = "speakers", .name = "Speakers"});
  world.pass(1);
  EXPECT_EQ(builds(), 1);
}

TEST_F(MixerBuildsTest, uses_the_queues_by_their_names) {
  MixerModel& mixer = startWithPlayer();
  mixer.setVolume(0.5f, player);
  EXPECT_EQ(tapQueue()->pending(), 1);
  EXPECT_EQ(builds(), 0) << "nothing is built on the main thread";
  world.settle();
  EXPECT_THAT(world.queues.labels(),
              ElementsAre("com.quorvane.mixer.taps", "com.quorvane.mixer.io"));
  EXPECT_EQ(world.queues.queues("com.quorvane.mixer.io").size(), 1u);
  mixer.setVolume(1.0f, player);
  EXPECT_EQ(world.hal.liveTaps().size(), 1u) << "nothing is torn down on the main thread";
  world.settle();
  EXPECT_TRUE(world.queues.queues("com.quorvane.mixer.io").empty());
}

}  // namespace
}  // namespace plemora
