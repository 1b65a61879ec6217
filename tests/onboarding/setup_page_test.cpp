#include "onboarding/setup_page.h"

#include <gmock/gmock.h>

namespace plemora {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

TEST(SetupPageTest, ACardOffersWhatItsStatusAllows) {
  struct Case {
    StepStatus status;
    bool hasButton;
    bool isEnabled;
    bool hasNote;
    bool hasSkip;
  };
  for (const Case& each : {Case{StepStatus::pending, true, false, false, false},
                           Case{StepStatus::active, true, true, false, true},
                           Case{StepStatus::inSettings, true, true, true, true},
                           Case{StepStatus::done, false, false, false, false}}) {
    SetupState state;
    state.soundIcon.set(each.status);
    const SetupCard card = setupPage(state, false).cards.back();
    EXPECT_EQ(card.status, each.status);
    EXPECT_EQ(!card.buttonTitle.empty(), each.hasButton);
    EXPECT_EQ(card.isButtonEnabled, each.isEnabled);
    EXPECT_EQ(!card.note.empty(), each.hasNote);
    EXPECT_EQ(card.skipTitle, each.hasSkip ? "Keep Apple's Sound Icon" : "");
  }
  SetupState state;
  state.controlCenter.set(StepStatus::working);
  const SetupCard card = setupPage(state, false).cards[2];
  EXPECT_EQ(card.note, "Restarting Control Center…");
  EXPECT_FALSE(card.isButtonEnabled);
}

TEST(SetupPageTest, TheEndSaysNoMoreThanWhatWasDone) {
  SetupState state;
  for (const SetupStep step : setupSteps) {
    EXPECT_FALSE(setupPage(state, true).isComplete);
    EXPECT_EQ(setupPage(state, true).finishTitle, "Finish Later");
    state.status(step).set(StepStatus::done);
  }
  EXPECT_EQ(setupPage(state, true).title, "You're all set");
  EXPECT_THAT(setupPage(state, true).completeLines,
              ElementsAre("Set the volume of every app, right from the Sound menu.",
                          "Plemora is in Control Center now, right where Sound used to be."));
  EXPECT_THAT(setupPage(state, false).completeLines, SizeIs(1));
}

TEST(SetupPageTest, AStepThatIsNotOfferedIsNeitherShownNorCounted) {
  SetupState state;
  state.audio.set(StepStatus::done);
  state.controlCenter.set(StepStatus::done);
  EXPECT_THAT(setupPage(state, false).cards, SizeIs(4));
  EXPECT_EQ(setupPage(state, false).doneCards, 2U);
  state.supportsControlCenter.set(false);
  EXPECT_THAT(setupPage(state, false).cards, SizeIs(3));
  EXPECT_EQ(setupPage(state, false).doneCards, 1U);
}

TEST(SetupPageTest, CardsAreKnownByTheirIDs) {
  const SetupPage page = setupPage(SetupState{}, false);
  ASSERT_THAT(page.cards, SizeIs(setupSteps.size()));
  for (const SetupStep step : setupSteps) {
    EXPECT_EQ(setupStep(page.cards[static_cast<std::size_t>(step)].id), step);
  }
  EXPECT_EQ(setupStep("loginItem"), std::nullopt);
}

}  // namespace
}  // namespace plemora
