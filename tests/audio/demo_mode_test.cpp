#include "audio/demo_mode.h"

#include <gmock/gmock.h>

#include "audio/audio_world.h"

namespace plemora {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* fullDemo = R"({
  "apps": [
    {"bundle": "com.example.Player", "volume": 0.5, "playing": true, "muted": false,
     "output": "demo-1"},
    {"bundle": "com.example.Away", "volume": 0.25, "playing": false, "muted": true}],
  "extraDevices": [
    {"name": "Kitchen HomePod", "kind": "airplay"}, {"name": "TV", "kind": "airplay"},
    {"name": "Interface", "kind": "usb"}, {"name": "Monitor", "kind": "display"},
    {"name": "My AirPods Max", "kind": "bluetooth"}, {"name": "AIRPODS PRO", "kind": ""},
    {"name": "AirPods", "kind": "other"}, {"name": "Bath Speaker", "kind": "bluetooth"},
    {"name": "HomePod", "kind": "bluetooth"}]})";

struct DemoModeTest : testing::Test {
  AudioWorld world;

  DemoMode demo(const std::string& json) {
    world.defaults.setString("demo", json);
    return DemoMode(world.defaults, world.workspace);
  }
};

TEST_F(DemoModeTest, refuses_what_is_no_configuration) {
  EXPECT_FALSE(DemoMode(world.defaults, world.workspace).config());
  EXPECT_TRUE(world.log.records.empty()) << "no text, no complaint";
  const char* cases[] = {
      "",
      "[]",
      R"({"hideDevices":true})",
      R"({"apps":{}})",
      R"({"apps":[{"volume":0.5,"playing":true,"muted":false}]})",
      R"({"apps":[{"bundle":"a","volume":true,"playing":true,"muted":false}]})",
      R"({"apps":[{"bundle":"a","volume":1,"playing":1,"muted":false}]})",
      R"({"apps":[{"bundle":"a","volume":1,"playing":true,"muted":false,"output":1}]})",
      R"({"apps":[],"hideDevices":"yes"})",
      R"({"apps":[],"extraDevices":[{"name":"a"}]})",
      R"({"apps":[]} trailing)",
  };
  for (const char* json : cases) {
    SCOPED_TRACE(json);
    world.log.records.clear();
    EXPECT_FALSE(demo(json).config());
    EXPECT_THAT(demo(json).extraDevices(), IsEmpty());
    EXPECT_THAT(world.log.messages(LogLevel::warning), testing::Contains(HasSubstr("\"demo\"")));
  }
}

TEST_F(DemoModeTest, makes_device_records_of_every_kind) {
  struct Row {
    const char* name;
    FourCharCode transport;
    const char* symbol;
  };
  const Row expected[] = {
      {"Kitchen HomePod", kAudioDeviceTransportTypeAirPlay, "homepod.fill"},
      {"TV", kAudioDeviceTransportTypeAirPlay, "airplay.audio"},
      {"Interface", kAudioDeviceTransportTypeUSB, "speaker.wave.2.fill"},
      {"Monitor", kAudioDeviceTransportTypeDisplayPort, "display"},
      {"My AirPods Max", kAudioDeviceTransportTypeBluetooth, "airpodsmax"},
      {"AIRPODS PRO", kAudioDeviceTransportTypeBluetooth, "airpodspro"},
      {"AirPods", kAudioDeviceTransportTypeBluetooth, "airpods"},
      {"Bath Speaker", kAudioDeviceTransportTypeBluetooth, "hifispeaker.fill"},
      {"HomePod", kAudioDeviceTransportTypeBluetooth, "headphones"},
  };
  const auto devices = demo(fullDemo).extraDevices();
  ASSERT_EQ(devices.size(), std::size(expected));
  std::set<std::string> uids;
  std::set<AudioObjectID> ids{world.speakers, world.usb, world.headset, 0};
  for (std::size_t i = 0; i < devices.size(); ++i) {
    SCOPED_TRACE(expected[i].name);
    EXPECT_EQ(devices[i].name, expected[i].name);
    EXPECT_EQ(devices[i].transport, expected[i].transport);
    EXPECT_EQ(devices[i].symbol, expected[i].symbol);
    EXPECT_THAT(devices[i].uid, testing::StartsWith("demo-"));
    EXPECT_TRUE(uids.insert(devices[i].uid).second);
    EXPECT_TRUE(ids.insert(devices[i].id).second);
  }
}

struct DemoMixerTest : testing::Test {
  AudioWorld world;

  MixerModel& start(const std::string& json) {
    world.workspace.install("com.example.Player", {"Player", {"player.png"}});
    world.play(11, "com.live", "Live", world.usb);
    world.defaults.setData("appLevels", R"({"com.live":{"volume":0.5,"muted":false}})");
    world.defaults.setString("demo", json);
    return world.start();
  }
};

TEST_F(DemoMixerTest, shows_the_configured_rows_in_their_order) {
  MixerModel& mixer = start(fullDemo);
  EXPECT_TRUE(mixer.isDemo());
  const AppChannel player{.id = "com.example.Player",
                          .name = "Player",
                          .icon = {"player.png"},
                          .isPlaying = true,
                          .volume = 0.5f,
                          .isMuted = false,
                          .outputUID = "demo-1",
                          .outputSymbol = "homepod.fill",
                          .isRouted = true};
  const AppChannel away{.id = "com.example.Away",
                        .name = "com.example.Away",
                        .icon = world.workspace.genericApplicationIcon(),
                        .isPlaying = false,
                        .volume = 0.25f,
                        .isMuted = true,
                        .outputUID = std::nullopt,
                        .outputSymbol = "speaker.wave.2.fill",
                        .isRouted = false};
  EXPECT_THAT(mixer.channels.get(), ElementsAre(player, away));
  EXPECT_EQ(mixer.outputs().devices.get().size(), 3u + 9u);
}

TEST_F(DemoMixerTest, changes_its_rows_and_nothing_else) {
  MixerModel& mixer = start(fullDemo);
  const int writes = world.defaults.writes();
  const int calls = static_cast<int>(world.hal.faults().journal().size());
  int published = 0;
  const auto subscription = mixer.channels.subscribe([&](const auto&) { ++published; });

  mixer.setVolume(0.0f, "com.example.Away");
  EXPECT_EQ(world.row("com.example.Away")->volume, 0.0f);
  EXPECT_FALSE(world.row("com.example.Away")->isMuted);
  mixer.toggleMute("com.example.Away");
  EXPECT_TRUE(world.row("com.example.Away")->isMuted);
  mixer.setOutput("usb", "com.example.Away");
  EXPECT_EQ(world.row("com.example.Away")->outputUID, "usb");
  EXPECT_EQ(world.row("com.example.Away")->outputSymbol, "speaker.wave.2.fill");
  EXPECT_TRUE(world.row("com.example.Away")->isRouted);
  EXPECT_EQ(published, 3);
  mixer.setVolume(0.5f, "com.unknown");
  mixer.toggleMute("com.unknown");
  EXPECT_EQ(published, 3);

  const auto demoDevice = mixer.outputs().devices.get().back();
  mixer.outputs().choose(demoDevice);
  EXPECT_EQ(world.hal.defaultOutput(), world.speakers);
  world.pass(5);
  EXPECT_EQ(world.defaults.writes(), writes);
  EXPECT_EQ(static_cast<int>(world.hal.faults().journal().size()), calls);
  EXPECT_TRUE(world.isClean());
  EXPECT_EQ(world.heardOn(world.usb), 1.0f) << "the live app is left alone";
}

TEST_F(DemoMixerTest, comes_from_a_launch_argument_too) {
  world.defaults = MemoryDefaults(
      {"-demo", R"({"apps":[{"bundle":"com.x","volume":1,"playing":true,"muted":false}]})"});
  MixerModel& mixer = world.start();
  EXPECT_TRUE(mixer.isDemo());
  EXPECT_THAT(world.rowNames(), ElementsAre("com.x"));
}

}  // namespace
}  // namespace plemora
