#include "onboarding/setup_page.h"

#include <algorithm>
#include <array>

namespace plemora {

namespace {

struct StepTexts {
  SetupStep step;
  const char* id;
  const char* title;
  const char* line;
  const char* buttonTitle;
  const char* againTitle;   ///< of the button while the user is elsewhere for this step
  const char* waitingNote;  ///< meanwhile
  const char* workingNote;  ///< while the program is at it
  const char* skipTitle;
};

constexpr const char* settingsNote = "Waiting for you in System Settings…";
constexpr const char* settingsAgain = "Show Again";

constexpr std::array<StepTexts, 4> texts{{
    {SetupStep::audio, "audio", setup_texts::audioTitle, setup_texts::audioLine, "Allow",
     settingsAgain, settingsNote, "", ""},
    {SetupStep::accessibility, "accessibility", "Allow Plemora in Control Center",
     "Lets Plemora draw its Sound module there. It only looks at Control Center.", "Allow",
     settingsAgain, settingsNote, "", ""},
    {SetupStep::controlCenter, "controlCenter", "Replace Sound in Control Center",
     "Swaps Apple's Sound module for Plemora's. Control Center restarts for a moment.", "Replace",
     "Try Again", "Follow the steps beside Control Center.", "Restarting Control Center…", ""},
    {SetupStep::soundIcon, "soundIcon", "Replace the menu bar icon",
     "Optional: hide Apple's Sound icon so Plemora's takes its place.", "Hide Apple's Icon",
     settingsAgain, settingsNote, "", "Keep Apple's Sound Icon"},
}};

SetupCard card(const StepTexts& step, StepStatus status) {
  const bool isWaiting = status == StepStatus::inSettings;
  const bool isReached = isWaiting || status == StepStatus::active;
  SetupCard card;
  card.id = step.id;
  card.title = step.title;
  card.line = step.line;
  card.status = status;
  if (status != StepStatus::done) {
    card.buttonTitle = isWaiting ? step.againTitle : step.buttonTitle;
  }
  card.isButtonEnabled = isReached;
  if (isWaiting) {
    card.note = step.waitingNote;
  } else if (status == StepStatus::working) {
    card.note = step.workingNote;
  }
  if (isReached) {
    card.skipTitle = step.skipTitle;
  }
  return card;
}

}  // namespace

SetupPage setupPage(const SetupState& state, bool isSoundReplaced, bool isControlCenterLate) {
  SetupPage page;
  page.isComplete = state.isComplete();
  page.title = page.isComplete ? setup_texts::completeTitle : setup_texts::windowTitle;
  page.finishTitle = page.isComplete ? setup_texts::finishTitle : setup_texts::finishLaterTitle;
  if (page.isComplete) {
    page.completeLines.emplace_back(setup_texts::completeLine);
    if (isSoundReplaced) {
      page.completeLines.emplace_back(
          "Plemora is in Control Center now, right where Sound used to be.");
    }
    page.showTitle = setup_texts::showTitle;
  } else {
    page.line = setup_texts::windowLine;
  }
  for (const StepTexts& step : texts) {
    if (step.step != SetupStep::controlCenter || state.supportsControlCenter.get()) {
      page.cards.push_back(card(step, state.statusOf(step.step)));
      if (isControlCenterLate && page.cards.back().status == StepStatus::active &&
          step.step == SetupStep::controlCenter) {
        page.cards.back().note = "Control Center has not come back. Try again in a moment.";
      }
    }
  }
  page.doneCards = static_cast<std::size_t>(
      std::ranges::count(page.cards, StepStatus::done, &SetupCard::status));
  return page;
}

std::optional<SetupStep> setupStep(const std::string& cardID) {
  const auto* found = std::ranges::find(texts, cardID, &StepTexts::id);
  return found == texts.end() ? std::nullopt : std::optional(found->step);
}

}  // namespace plemora
