#include "adapters/linux/dbus/mixer_service.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "adapters/linux/dbus/mixer_names.h"
#include "audio/audio_world.h"

namespace plemora {
namespace {

using testing::HasSubstr;

class MixerServiceTest : public testing::Test {
 protected:
  MixerServiceTest() {
    world.play(100, "player", "Player", world.speakers);
    world.start();
    service.emplace(world.main, *world.mixer, "1.2.3");
    service->setConnected(true);
    world.settle();
    service->setChangeHandler([this] { ++changes; });
  }

  AppState app() { return service->state().apps.at(0); }

  AudioWorld world;
  std::optional<MixerService> service;
  int changes = 0;
};

TEST_F(MixerServiceTest, ShowsTheModelAsItIs) {
  const MixerState state = service->state();
  ASSERT_EQ(state.apps.size(), 1u);
  EXPECT_EQ(state.apps[0], (AppState{.id = "player",
                                     .name = "Player",
                                     .icon = "Player.png",
                                     .playing = true,
                                     .outputSymbol = state.apps[0].outputSymbol}));
  ASSERT_EQ(state.devices.size(), 3u);
  EXPECT_EQ(state.devices[1], (DeviceState{"usb", "Desk", "speaker.wave.2.fill", "usb", false}));
  EXPECT_TRUE(state.devices[0].isDefault);
  EXPECT_EQ(state.defaultDevice, "speakers");
  EXPECT_TRUE(state.connected);
  EXPECT_FALSE(state.demo);
  EXPECT_EQ(state.permission, "granted");
  EXPECT_EQ(state.version, "1.2.3");
}

TEST_F(MixerServiceTest, ShowsAVolumeAtOnceAlthoughTheModelPublishesItLater) {
  EXPECT_EQ(service->setAppVolume("player", 0.4), std::nullopt);
  EXPECT_DOUBLE_EQ(app().volume, 0.4) << "as typed, not as the nearest single";
  world.settle();
  EXPECT_DOUBLE_EQ(app().volume, 0.4);

  service->toggleAppMute("player");
  EXPECT_TRUE(app().muted);
  EXPECT_EQ(service->setAppVolume("player", 0.3), std::nullopt);
  EXPECT_FALSE(app().muted) << "a volume above 0 unmutes";
  EXPECT_EQ(service->setAppMute("player", true), std::nullopt);
  EXPECT_TRUE(app().muted);
  EXPECT_DOUBLE_EQ(app().volume, 0.3);
  EXPECT_EQ(service->setAppMute("player", true), std::nullopt);
  EXPECT_TRUE(app().muted) << "setting is not toggling";

  EXPECT_EQ(service->setAppVolume("player", 7), std::nullopt);
  EXPECT_DOUBLE_EQ(app().volume, 1);
}

TEST_F(MixerServiceTest, FollowsAVolumeThatIsSetElsewhere) {
  world.mixer->toggleMute("player");
  world.settle();
  changes = 0;
  world.mixer->setVolume(0.4f, "player");
  world.mixer->setVolume(0.3f, "player");
  world.settle();
  EXPECT_EQ(changes, 1);
  EXPECT_DOUBLE_EQ(app().volume, 0.3);
  EXPECT_FALSE(app().muted);
}

TEST_F(MixerServiceTest, AVolumeIsHeard) {
  service->setAppVolume("player", 0.5);
  world.settle();
  EXPECT_FLOAT_EQ(world.heardOn(world.speakers), 0.25f);
}

TEST_F(MixerServiceTest, RefusesWhatItCannotDoAndSaysWhy) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double infinite = std::numeric_limits<double>::infinity();
  AudibilityReport report;
  struct Case {
    ServiceResult result;
    const char* name;
    const char* message;
  };
  const Case cases[] = {
      {service->setAppVolume("nobody", 0.5), unknownAppError, "\"nobody\""},
      {service->toggleAppMute("nobody"), unknownAppError, "\"nobody\""},
      {service->setAppMute("nobody", true), unknownAppError, "\"nobody\""},
      {service->setAppOutput("nobody", ""), unknownAppError, "\"nobody\""},
      {service->explain("nobody", report), unknownAppError, "\"nobody\""},
      {service->setAppVolume("player", nan), invalidValueError, "not a number"},
      {service->setAppVolume("player", infinite), invalidValueError, "from 0 to 1"},
      {service->setVolume(nan), invalidValueError, "not a number"},
      {service->setAppOutput("player", "nothing"), unknownDeviceError, "\"nothing\""},
      {service->setDefaultDevice("nothing"), unknownDeviceError, "\"nothing\""},
      {service->setDefaultDevice(""), unknownDeviceError, "\"\""},
  };
  for (const Case& expected : cases) {
    ASSERT_TRUE(expected.result) << expected.message;
    EXPECT_EQ(expected.result->name, expected.name) << expected.message;
    EXPECT_THAT(expected.result->message, HasSubstr(expected.message));
  }
  EXPECT_DOUBLE_EQ(app().volume, 1) << "nothing was changed";
}

TEST_F(MixerServiceTest, ControlsTheDefaultDevice) {
  EXPECT_EQ(service->setVolume(0.3), std::nullopt);
  EXPECT_EQ(service->setMuted(true), std::nullopt);
  world.settle();
  EXPECT_DOUBLE_EQ(service->state().volume.value_or(-1), 0.3);
  EXPECT_TRUE(service->state().muted);

  EXPECT_EQ(service->setDefaultDevice("usb"), std::nullopt);
  world.settle();
  EXPECT_EQ(service->state().defaultDevice, "usb");

  for (const AudioObjectID device : {world.speakers, world.usb, world.headset}) {
    world.hal.removeDevice(device);
  }
  world.settle();
  EXPECT_EQ(service->setVolume(0.3)->name, noVolumeError);
  EXPECT_THAT(service->setMuted(true)->message, HasSubstr("no default output device"));
  service->setConnected(false);
  EXPECT_THAT(service->setMuted(true)->message, HasSubstr("no sound server"));
}

TEST_F(MixerServiceTest, TellsOfManyChangesOnceATurn) {
  service->setAppVolume("player", 0.4);
  service->setAppVolume("player", 0.6);
  service->toggleAppMute("player");
  service->setConnected(false);
  EXPECT_EQ(changes, 0) << "not from inside a call";
  world.main.drain();
  EXPECT_EQ(changes, 1);

  service->setConnected(false);
  world.main.drain();
  EXPECT_EQ(changes, 1) << "nothing has changed";
  service->setConnected(true);
  world.main.drain();
  EXPECT_EQ(changes, 2);
}

TEST_F(MixerServiceTest, AChangeThatOutlivesTheServiceDoesNoHarm) {
  service->setAppVolume("player", 0.4);
  service.reset();
  world.settle();
  EXPECT_EQ(changes, 0);
}

TEST_F(MixerServiceTest, ReadsLevelsOnlyWhileSomebodyWatches) {
  service->setAppVolume("player", 0.5);
  world.settle();
  const int timers = world.main.pendingTimers();
  std::vector<LevelReport> levels;
  auto watch = service->watchLevels([&](const auto& now) { levels = now; });
  world.hal.step(64);
  world.hal.step(64);
  world.pass(MixerService::levelInterval);
  ASSERT_EQ(levels.size(), 1u);
  EXPECT_EQ(levels[0], (LevelReport{"player", 0.25, 1, 0.25}));
  EXPECT_EQ(world.main.pendingTimers(), timers + 1);

  watch.reset();
  EXPECT_EQ(world.main.pendingTimers(), timers);
}

TEST_F(MixerServiceTest, ExplainsSilence) {
  service->toggleAppMute("player");
  world.settle();
  AudibilityReport report;
  ASSERT_EQ(service->explain("player", report), std::nullopt);
  EXPECT_EQ(report.product, 0);
  EXPECT_THAT(report.verdict, HasSubstr("app mute"));
  EXPECT_THAT(report.factors, testing::Contains(testing::Field(&FactorReport::name, "app level")));
}

}  // namespace
}  // namespace plemora
