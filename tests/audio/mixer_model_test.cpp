#include "audio/mixer_model.h"

#include <gmock/gmock.h>

#include <limits>

#include "audio/mixer_fixture.h"

namespace plemora {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using MixerModelTest = MixerTest;

TEST_F(MixerModelTest, publishes_a_plain_row_without_touching_an_app_at_full_volume) {
  MixerModel& mixer = startWithPlayer();
  const AppChannel expected{.id = player,
                            .name = "Player",
                            .icon = {"Player.png"},
                            .isPlaying = true,
                            .volume = 1.0f,
                            .isMuted = false,
                            .outputUID = std::nullopt,
                            .outputSymbol = mixer.outputs().defaultDevice()->symbol,
                            .isRouted = false};
  EXPECT_THAT(mixer.channels.get(), ElementsAre(expected));
  EXPECT_THAT(world.hal.faults().journal(), IsEmpty());
  EXPECT_EQ(world.defaults.writes(), 0);
}

TEST_F(MixerModelTest, turns_volume_and_mute_into_gain) {
  struct Case {
    float volume;
    bool mute;
    float gain;
    bool hasTap;
  };
  const Case cases[] = {
      {0.5f, false, 0.25f, true}, {0.5f, true, 0.0f, true},   {0.0f, false, 0.0f, true},
      {1.0f, true, 0.0f, true},   {1.0f, false, 1.0f, false}, {0.9996f, false, 1.0f, false},
      {2.0f, false, 1.0f, false}, {-1.0f, false, 0.0f, true},
  };
  MixerModel& mixer = startWithPlayer();
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.volume << (c.mute ? " muted" : ""));
    mixer.setVolume(1.0f, player);  // unmutes
    mixer.setVolume(c.volume, player);
    if (c.mute) {
      mixer.toggleMute(player);
    }
    world.settle();
    EXPECT_EQ(world.hal.liveTaps().size(), c.hasTap ? 1u : 0u);
    EXPECT_EQ(world.heardOn(world.speakers), c.gain);
  }
}

TEST_F(MixerModelTest, keeps_the_volume_while_muted_and_unmutes_by_raising_it) {
  MixerModel& mixer = startWithPlayer();
  mixer.setVolume(0.5f, player);
  mixer.toggleMute(player);
  EXPECT_EQ(world.row(player)->volume, 0.5f);
  EXPECT_TRUE(world.row(player)->isMuted);
  mixer.toggleMute(player);
  EXPECT_FALSE(world.row(player)->isMuted);
  EXPECT_EQ(world.row(player)->volume, 0.5f);

  mixer.toggleMute(player);
  mixer.setVolume(0.0f, player);
  EXPECT_THAT(stored(), testing::HasSubstr("\"muted\":true")) << "0 does not unmute";
  mixer.setVolume(0.1f, player);
  EXPECT_THAT(stored(), testing::HasSubstr("\"muted\":false"));
}

TEST_F(MixerModelTest, tells_of_every_volume_as_it_was_stored) {
  MixerModel& mixer = startWithPlayer();
  mixer.toggleMute(player);
  std::vector<std::pair<float, bool>> told;
  const auto subscription = mixer.volumeChange.subscribe([&](const VolumeChange& change) {
    EXPECT_EQ(change.id, player);
    told.emplace_back(change.volume, change.isMuted);
  });
  mixer.setVolume(-1.0f, player);
  mixer.setVolume(0.5f, player);
  mixer.setVolume(std::numeric_limits<float>::quiet_NaN(), player);
  mixer.setVolume(2.0f, player);
  EXPECT_THAT(told,
              ElementsAre(std::pair(0.0f, true), std::pair(0.5f, false), std::pair(1.0f, false)));
}

TEST_F(MixerModelTest, sets_the_gain_of_a_running_tap_and_never_rebuilds_it) {
  MixerModel& mixer = startWithPlayer();
  mixer.setVolume(0.5f, player);
  world.settle();
  ASSERT_EQ(builds(), 1);
  int published = 0;
  const auto subscription = mixer.channels.subscribe([&](const auto&) { ++published; });
  for (int i = 0; i <= 100; ++i) {
    mixer.setVolume(static_cast<float>(i) / 101.0f, player);
  }
  EXPECT_EQ(published, 0) << "the slider shows its position already";
  mixer.toggleMute(player);
  mixer.toggleMute(player);
  world.settle();
  EXPECT_EQ(builds(), 1);
  mixer.publish();
  EXPECT_EQ(world.row(player)->volume, 100.0f / 101.0f);
}

TEST_F(MixerModelTest, remembers_levels_across_launches) {
  startWithPlayer().setVolume(0.5f, player);
  world.mixer->setOutput("usb", player);
  world.mixer->setVolume(0.25f, "com.example.Absent");
  world.settle();
  EXPECT_EQ(stored(), R"({"com.example.Absent":{"volume":0.25,"muted":false},)"
                      R"("com.example.Player":{"volume":0.5,"muted":false,"output":"usb"}})");

  world.mixer.reset();
  EXPECT_TRUE(world.isClean());
  EXPECT_EQ(world.heardOn(world.speakers), 1.0f);
  world.start();
  EXPECT_EQ(world.row(player)->volume, 0.5f);
  EXPECT_EQ(world.row(player)->outputUID, "usb");
  EXPECT_EQ(world.heardOn(world.usb), 0.25f);
  EXPECT_EQ(world.heardOn(world.speakers), 0.0f);
}

TEST_F(MixerModelTest, routes_an_app_to_the_chosen_device) {
  MixerModel& mixer = startWithPlayer();
  mixer.setOutput("headset", player);
  world.settle();
  EXPECT_EQ(world.row(player)->outputUID, "headset");
  EXPECT_EQ(world.row(player)->outputSymbol, "headphones");
  EXPECT_TRUE(world.row(player)->isRouted);
  EXPECT_EQ(world.heardOn(world.headset), 1.0f);
  EXPECT_EQ(world.heardOn(world.speakers), 0.0f);

  // The device that it plays to anyway: no output is stored, and no tap is left.
  mixer.setOutput("speakers", player);
  world.settle();
  EXPECT_EQ(world.row(player)->outputUID, std::nullopt);
  EXPECT_FALSE(world.row(player)->isRouted);
  EXPECT_THAT(stored(), testing::Not(testing::HasSubstr("output")));
  EXPECT_TRUE(world.isClean());
}

TEST_F(MixerModelTest, falls_back_while_the_chosen_device_is_away) {
  MixerModel& mixer = startWithPlayer();
  mixer.setOutput("headset", player);
  world.settle();
  const auto facts = world.hal.device(world.headset);
  world.hal.removeDevice(world.headset);
  world.settle();
  EXPECT_EQ(world.row(player)->outputUID, "headset") << "the choice is kept";
  EXPECT_FALSE(world.row(player)->isRouted);
  EXPECT_EQ(world.heardOn(world.speakers), 1.0f);
  EXPECT_TRUE(world.isClean());

  world.headset = world.hal.addDevice(facts);
  world.settle();
  EXPECT_TRUE(world.row(player)->isRouted);
  EXPECT_EQ(world.heardOn(world.headset), 1.0f);
}

TEST_F(MixerModelTest, takes_the_source_from_the_first_device_that_is_not_its_own) {
  world.launch(11, player, "Player");
  const auto ours = world.hal.addDevice({.uid = "com.quorvane.mixer.aggregate.X", .name = "Ours"});
  world.hal.addProcess({.pid = 11, .devices = {0, ours, world.usb}});
  world.start().setVolume(0.5f, player);
  world.settle();
  ASSERT_EQ(world.hal.liveTaps().size(), 1u);
  EXPECT_EQ(world.hal.liveTaps()[0].deviceUID, "usb");

  // With no other, the default device.
  world.hal.removeDevice(world.usb);
  world.pass(1);
  ASSERT_EQ(world.hal.liveTaps().size(), 1u);
  EXPECT_EQ(world.hal.liveTaps()[0].deviceUID, "speakers");
}

TEST_F(MixerModelTest, rebuilds_every_tap_when_the_default_device_changes) {
  MixerModel& mixer = startWithPlayer();
  world.play(12, "com.routed", "Routed", world.speakers);
  world.pass(1);
  mixer.setOutput("headset", "com.routed");
  mixer.setVolume(0.5f, player);
  world.settle();
  ASSERT_EQ(builds(), 2);
  const auto before = world.hal.liveAggregateIDs();
  world.hal.setDefaultOutput(world.usb);
  world.settle();
  EXPECT_EQ(builds(), 4);
  for (const AudioObjectID id : world.hal.liveAggregateIDs()) {
    EXPECT_THAT(before, testing::Not(testing::Contains(id)));
  }
  EXPECT_EQ(world.hal.liveTaps().size(), 2u);

  // The same default device again is no change.
  world.hal.notify(kAudioObjectSystemObject,
                   {kAudioHardwarePropertyDefaultOutputDevice, kAudioObjectPropertyScopeGlobal});
  world.settle();
  EXPECT_EQ(builds(), 4);
}

TEST_F(MixerModelTest, rebuilds_a_tap_when_its_processes_or_its_source_change) {
  MixerModel& mixer = startWithPlayer();
  mixer.setVolume(0.5f, player);
  world.settle();
  world.hal.updateProcess(process, [&](SimulatedProcess& p) { p.devices = {world.usb}; });
  world.pass(1);
  EXPECT_EQ(builds(), 2);
  EXPECT_EQ(world.heardOn(world.usb), 0.25f);
  const auto second = world.hal.addProcess(
      {.pid = 11, .devices = {world.usb}, .source = [](auto, auto) { return 1.0f; }});
  world.pass(1);
  EXPECT_EQ(builds(), 3);
  EXPECT_EQ(world.heardOn(world.usb), 0.5f) << "both at a quarter";
  world.hal.updateProcess(second, [](SimulatedProcess& p) { p.isRunningOutput = false; });
  world.pass(1);
  EXPECT_EQ(builds(), 3) << "still the same processes";
  EXPECT_EQ(world.hal.liveTaps().size(), 1u);
}

TEST_F(MixerModelTest, lists_a_silent_app_for_ten_minutes) {
  MixerModel& mixer = startWithPlayer();
  world.play(12, "com.never", "Never played", world.speakers, false);
  world.pass(1);
  EXPECT_THAT(world.rowNames(), ElementsAre("Player"));
  world.pass(7200);
  world.hal.updateProcess(process, [](SimulatedProcess& p) { p.isRunningOutput = false; });
  world.pass(AudioAppScanner::scanDelay);
  EXPECT_FALSE(world.row(player)->isPlaying);
  world.pass(599);
  mixer.publish();
  EXPECT_THAT(world.rowNames(), ElementsAre("Player")) << "599 seconds later";
  world.pass(1);
  EXPECT_THAT(world.rowNames(), ElementsAre("Player")) << "until the next publish";
  mixer.publish();
  EXPECT_THAT(world.rowNames(), IsEmpty()) << "600 seconds later";
  EXPECT_EQ(world.main.pendingTimers(), 0);
}

TEST_F(MixerModelTest, lists_a_tapped_app_for_as_long_as_its_tap) {
  MixerModel& mixer = startWithPlayer();
  mixer.setVolume(0.5f, player);
  world.hal.updateProcess(process, [](SimulatedProcess& p) { p.isRunningOutput = false; });
  world.pass(10'000);
  mixer.publish();
  EXPECT_THAT(world.rowNames(), ElementsAre("Player"));

  world.hal.setDefaultOutput(world.usb);
  EXPECT_THAT(world.rowNames(), ElementsAre("Player"));
  world.main.drain();  // the tap is being rebuilt
  EXPECT_THAT(world.rowNames(), ElementsAre("Player")) << "no flicker";
  world.settle();
  EXPECT_THAT(world.rowNames(), ElementsAre("Player"));

  mixer.setVolume(1.0f, player);
  EXPECT_THAT(world.rowNames(), IsEmpty()) << "no row is left whose tap is gone";
}

TEST_F(MixerModelTest, drops_row_and_tap_of_an_app_that_has_quit) {
  MixerModel& mixer = startWithPlayer();
  mixer.setVolume(0.5f, player);
  world.settle();
  world.hal.removeProcess(process);
  world.pass(1);
  EXPECT_THAT(world.rowNames(), IsEmpty());
  EXPECT_TRUE(world.isClean());
  process = world.play(12, player, "Player", world.speakers);
  world.pass(1);
  EXPECT_EQ(world.row(player)->volume, 0.5f);
  EXPECT_EQ(world.heardOn(world.speakers), 0.25f);
}

TEST_F(MixerModelTest, sorts_rows_by_name_without_regard_to_case) {
  world.play(11, "com.z", "alpha", world.usb);
  world.play(12, "com.y", "Beta", world.usb);
  world.play(13, "com.b", "Same", world.usb);
  world.play(14, "com.a", "SAME", world.usb);
  world.play(15, "com.x", "Alpine", world.usb);
  world.start();
  EXPECT_THAT(world.rowNames(), ElementsAre("alpha", "Alpine", "Beta", "SAME", "Same"));
}

TEST_F(MixerModelTest, publishes_only_what_has_changed) {
  MixerModel& mixer = startWithPlayer();
  int published = 0;
  const auto subscription = mixer.channels.subscribe([&](const auto&) { ++published; });
  mixer.publish();
  mixer.setOutput(std::nullopt, player);
  world.hal.notify(kAudioObjectSystemObject,
                   {kAudioHardwarePropertyDevices, kAudioObjectPropertyScopeGlobal});
  world.pass(1);
  EXPECT_EQ(published, 0);
  mixer.toggleMute(player);
  world.settle();
  EXPECT_EQ(published, 1);
}

}  // namespace
}  // namespace plemora
