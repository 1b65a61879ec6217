#include "onboarding/setup_state.h"

#include <gtest/gtest.h>

namespace plemora {
namespace {

TEST(SetupState, IsCompleteOnlyOnceAllFourStepsAreDone) {
  SetupState state;
  for (const SetupStep step : {SetupStep::audio, SetupStep::accessibility, SetupStep::controlCenter,
                               SetupStep::soundIcon}) {
    EXPECT_FALSE(state.isComplete());
    state.status(step).set(StepStatus::done);
  }
  EXPECT_TRUE(state.isComplete());
  // Also one that is not offered.
  state.supportsControlCenter.set(false);
  state.controlCenter.set(StepStatus::active);
  EXPECT_FALSE(state.isComplete());
}

}  // namespace
}  // namespace plemora
