#include "main/gallery/setup_states.h"

#include "onboarding/helper_page.h"
#include "onboarding/setup_page.h"

namespace plemora {

namespace {

using Kind = HelperState::Kind;
using Placement = HelperState::Placement;

SetupPage pageAt(StepStatus audio, StepStatus accessibility, StepStatus controlCenter,
                 StepStatus soundIcon) {
  SetupState state;
  state.audio.set(audio);
  state.accessibility.set(accessibility);
  state.controlCenter.set(controlCenter);
  state.soundIcon.set(soundIcon);
  return setupPage(state, true);
}

/// What a desktop without Control Center asks for.
SetupPage otherDesktop() {
  SetupPage page =
      pageAt(StepStatus::active, StepStatus::pending, StepStatus::pending, StepStatus::pending);
  page.cards.resize(1);
  page.cards.push_back({.id = "loginItem",
                        .title = "Start at login",
                        .line = "Plemora is there as soon as you are.",
                        .status = StepStatus::active,
                        .buttonTitle = "Start at Login",
                        .skipTitle = "Not Now"});
  page.cards.push_back({.id = "trayIcon",
                        .title = "Show the tray icon",
                        .line = "This desktop hides it. Install the extension AppIndicator and "
                                "KStatusNotifierItem Support, then log in anew.",
                        .note = "The mixer also opens with: plemora --open",
                        .buttonTitle = "OK"});
  return page;
}

SetupPage longTexts() {
  SetupPage page =
      pageAt(StepStatus::done, StepStatus::inSettings, StepStatus::active, StepStatus::pending);
  page.line =
      "A line that goes on for so long that it needs a second one below the first, as it "
      "would in languages with longer words than these.";
  for (SetupCard& card : page.cards) {
    card.title += ", and then some more that does not fit";
    card.line += " And there is a good deal more to be said of it, which takes a third line.";
    card.note = "What goes on right now is told in more words than have room in one line.";
    if (!card.buttonTitle.empty()) {
      card.buttonTitle = "Open Those Settings";
    }
    card.skipTitle = card.status == StepStatus::done ? "" : "Leave everything as it is for now";
  }
  return page;
}

HelperPage helperAt(Kind kind, Placement placement, void (*change)(HelperState&)) {
  HelperState state;
  state.kind.set(kind);
  state.placement.set(placement);
  change(state);
  return helperPage(state);
}

}  // namespace

std::vector<NamedPage<SetupPage>> setupPages() {
  using enum StepStatus;
  return {{"setup-first", pageAt(active, pending, pending, pending)},
          {"setup-settings", pageAt(done, inSettings, pending, pending)},
          {"setup-working", pageAt(done, done, working, pending)},
          {"setup-last", pageAt(done, done, done, active)},
          {"setup-complete", pageAt(done, done, done, done)},
          {"setup-other-desktop", otherDesktop()},
          {"setup-long-texts", longTexts()}};
}

std::vector<NamedPage<HelperPage>> helperPages() {
  const auto asIs = [](HelperState&) {};
  return {
      {"helper-audio", helperAt(Kind::audioPermission, Placement::under, asIs)},
      {"helper-audio-left", helperAt(Kind::audioPermission, Placement::left, asIs)},
      {"helper-accessibility", helperAt(Kind::accessibility, Placement::right, asIs)},
      {"helper-dragging", helperAt(Kind::accessibility, Placement::under,
                                   [](HelperState& state) { state.isDragging.set(true); })},
      {"helper-approval", helperAt(Kind::audioPermission, Placement::under,
                                   [](HelperState& state) { state.awaitingApproval.set(true); })},
      {"helper-missing", helperAt(Kind::audioPermission, Placement::under,
                                  [](HelperState& state) { state.settingsMissing.set(true); })},
      {"helper-sound-icon", helperAt(Kind::hideSoundIcon, Placement::left, asIs)},
      {"helper-control-center", helperAt(Kind::controlCenter, Placement::under, asIs)},
      {"helper-open", helperAt(Kind::controlCenter, Placement::under,
                               [](HelperState& state) { state.controlCenterOpen.set(true); })},
      {"helper-editing",
       helperAt(Kind::controlCenter, Placement::under,
                [](HelperState& state) { state.controlCenterEditing.set(true); })},
      {"helper-retry", helperAt(Kind::controlCenter, Placement::under,
                                [](HelperState& state) { state.controlCenterRetry.set(true); })},
      {"helper-success", helperAt(Kind::accessibility, Placement::under,
                                  [](HelperState& state) { state.succeeded.set(true); })},
  };
}

}  // namespace plemora
