#include "audio/audio_permission.h"

#include <gmock/gmock.h>

#include "audio/audio_world.h"

namespace plemora {
namespace {

using Status = AudioPermission::Status;

struct AudioPermissionTest : testing::Test {
  AudioWorld world;
  AudioPermission permission{world.consent, world.main};
  std::vector<bool> answers;

  void request() {
    permission.request([this](bool granted) { answers.push_back(granted); });
  }
};

TEST_F(AudioPermissionTest, translates_the_answer_of_the_service) {
  const std::pair<std::optional<int>, Status> cases[] = {
      {0, Status::granted},  {1, Status::denied},   {2, Status::unknown},
      {-1, Status::unknown}, {{}, Status::unknown},
  };
  for (const auto& [answer, status] : cases) {
    world.consent.setPreflight(answer);
    EXPECT_EQ(permission.status(), status);
  }
  EXPECT_THAT(world.consent.services(), testing::Each("kTCCServiceAudioCapture"));
}

TEST_F(AudioPermissionTest, hands_the_reply_over_on_the_main_queue) {
  for (const bool granted : {true, false}) {
    answers.clear();
    request();
    EXPECT_EQ(world.consent.openRequests(), 1);
    world.consent.decide(granted);
    EXPECT_TRUE(answers.empty()) << "not on the thread of the service";
    world.settle();
    EXPECT_EQ(answers, std::vector{granted});
  }
  EXPECT_EQ(world.consent.services().back(), "kTCCServiceAudioCapture");
}

TEST_F(AudioPermissionTest, completes_with_false_when_there_is_nobody_to_ask) {
  world.consent.setCanRequest(false);
  request();
  EXPECT_TRUE(answers.empty());
  world.settle();
  EXPECT_EQ(answers, std::vector{false});
}

}  // namespace
}  // namespace plemora
