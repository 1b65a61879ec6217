#include "audio/audibility.h"

#include <gmock/gmock.h>

#include "audio/audio_world.h"

namespace plemora {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Status = AudioPermission::Status;

struct AudibilityTest : testing::Test {
  static constexpr const char* player = "com.example.Player";
  AudioWorld world;
  AudioObjectID process = world.play(11, player, "Player", world.speakers);

  Audibility explain() { return world.mixer->audibility(player).value(); }

  static std::vector<std::string> zeros(const Audibility& audibility) {
    std::vector<std::string> names;
    for (const AudibilityFactor& factor : audibility.factors) {
      if (factor.value == 0) {
        names.push_back(factor.name);
      }
    }
    return names;
  }

  double value(const std::string& name) {
    for (const AudibilityFactor& factor : explain().factors) {
      if (factor.name == name) {
        return factor.value;
      }
    }
    return -1;
  }
};

TEST_F(AudibilityTest, names_what_makes_an_app_silent) {
  MixerModel& mixer = world.start();
  const auto device = [this](AudioObjectID id, auto change) {
    world.hal.updateDevice(id, change);
    world.settle();
  };
  EXPECT_THAT(zeros(explain()), IsEmpty());
  EXPECT_EQ(explain().verdict, "Player is heard on Speakers");
  EXPECT_EQ(explain().product, 1.0);

  mixer.toggleMute(player);
  world.settle();
  EXPECT_THAT(zeros(explain()), ElementsAre("app mute"));
  EXPECT_EQ(explain().verdict, "silent: app mute: Player is muted");
  mixer.setVolume(0.0f, player);
  EXPECT_THAT(zeros(explain()), ElementsAre("app mute", "app level"));
  mixer.setVolume(0.5f, player);
  EXPECT_EQ(value("app level"), 0.25);

  device(world.speakers, [](SimulatedDevice& d) { d.isMuted = true; });
  EXPECT_THAT(zeros(explain()), ElementsAre("device mute"));
  EXPECT_THAT(explain().verdict, HasSubstr("Speakers is muted"));
  device(world.speakers, [](SimulatedDevice& d) { d.volume = 0.0f; });
  EXPECT_THAT(zeros(explain()), ElementsAre("device mute", "device volume"));

  // On another device those of the speakers do not count, but that device's own do.
  mixer.setOutput("usb", player);
  world.settle();
  EXPECT_THAT(zeros(explain()), IsEmpty());
  device(world.usb, [](SimulatedDevice& d) { d.isMuted = true; });
  EXPECT_THAT(zeros(explain()), ElementsAre("device mute"));
  device(world.usb, [](SimulatedDevice& d) { d.isMuted = false; });

  world.consent.setPreflight(1);
  EXPECT_THAT(zeros(explain()), ElementsAre("permission"));
  EXPECT_EQ(explain().product, 0.0);
  world.consent.setPreflight(0);

  world.hal.updateProcess(process, [](SimulatedProcess& p) { p.isRunningOutput = false; });
  world.pass(1);
  EXPECT_THAT(zeros(explain()), ElementsAre("playing"));
}

TEST_F(AudibilityTest, counts_the_permission_only_for_an_app_that_is_tapped) {
  world.consent.setPreflight(2);
  MixerModel& mixer = world.start();
  EXPECT_EQ(value("permission"), 1.0);
  mixer.setVolume(0.5f, player);
  EXPECT_EQ(value("permission"), 0.0) << "while it is built";
  world.settle();
  EXPECT_EQ(value("permission"), 0.0);
}

TEST_F(AudibilityTest, says_when_the_level_has_no_effect) {
  MixerModel& mixer = world.start();
  world.hal.faults().add({.call = HalCall::createTap, .times = -1});
  mixer.setOutput("usb", player);
  mixer.setVolume(0.5f, player);
  mixer.toggleMute(player);
  world.settle();
  ASSERT_EQ(world.heardOn(world.speakers), 1.0f);
  const Audibility audibility = explain();
  EXPECT_EQ(audibility.product, 1.0);
  EXPECT_EQ(audibility.verdict, "Player is heard on Speakers");
  EXPECT_THAT(audibility.factors[1].text, HasSubstr("could not be captured"));
  EXPECT_THAT(audibility.factors[2].text, HasSubstr("50 %"));
}

TEST_F(AudibilityTest, says_when_the_chosen_device_is_away_or_there_is_none) {
  MixerModel& mixer = world.start();
  mixer.setOutput("gone", player);
  world.settle();
  EXPECT_EQ(value("route"), 1.0);
  EXPECT_THAT(explain().factors[3].text, HasSubstr("chosen device is not there"));
  for (const AudioObjectID device : {world.speakers, world.usb, world.headset}) {
    world.hal.removeDevice(device);
  }
  world.pass(1);
  EXPECT_THAT(zeros(explain()), ElementsAre("route"));
  EXPECT_EQ(explain().verdict, "silent: route: there is no output device");
  EXPECT_FALSE(mixer.audibility("com.unknown"));
}

}  // namespace
}  // namespace plemora
