#include "adapters/linux/dbus/mixer_service.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

TEST_F(MixerServiceTest, AChangeThatOutlivesTheServiceDoesNoHarm) {
  service->setAppVolume("player", 0.4);
  service.reset();
  world.settle();
  EXPECT_EQ(changes, 0);
}

}  // namespace
}  // namespace plemora
