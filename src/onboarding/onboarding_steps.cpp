#include <algorithm>
#include <array>

#include "audio/audio_permission.h"
#include "audio/mixer_model.h"
#include "onboarding/onboarding_controller.h"
#include "onboarding/onboarding_guides.h"
#include "platform/accessibility.h"
#include "platform/clock.h"
#include "platform/user_defaults.h"
#include "platform/workspace.h"

// The steps of setup: how each begins, how it is seen to be done, and what follows.

namespace plemora {

using Kind = HelperState::Kind;

namespace {

Kind kindOf(SetupStep step) {
  switch (step) {
    case SetupStep::audio:
      return Kind::audioPermission;
    case SetupStep::accessibility:
      return Kind::accessibility;
    case SetupStep::controlCenter:
      return Kind::controlCenter;
    case SetupStep::soundIcon:
      break;
  }
  return Kind::hideSoundIcon;
}

}  // namespace

void OnboardingController::startAudio() {
  if (facts_.isAudioGranted()) {
    audioGranted();
    return;
  }
  setStatus(SetupStep::audio, StepStatus::inSettings);
  sendToSettings(SetupStep::audio, std::string(AudioPermission::settingsURL));
}

void OnboardingController::startAccessibility() {
  if (facts_.isTrusted()) {
    bringBack();
    completeAccessibility();
    return;
  }
  setStatus(SetupStep::accessibility, StepStatus::inSettings);
  services_.accessibility.requestTrust();
  sendToSettings(SetupStep::accessibility, accessibilitySettingsURL);
}

void OnboardingController::startSoundIcon() {
  setStatus(SetupStep::soundIcon, StepStatus::inSettings);
  sendToSettings(SetupStep::soundIcon, menuBarSettingsURL);
}

void OnboardingController::sendToSettings(SetupStep step, const std::string& url) {
  services_.menuBar.workspace.openURL(url);
  presentHelper(step);
  startPolling();
}

void OnboardingController::presentHelper(SetupStep step) {
  guides().pointer.hide();
  helper().present(kindOf(step), buttonFrame(step));
}

void OnboardingController::startControlCenter() {
  if (facts_.layout() == SetupFacts::Layout::whole) {
    bringBack();
    completeControlCenter();
    return;
  }
  oldControlCenters_ = facts_.controlCenters();
  isControlCenterLate_ = false;
  if (!replaceSound()) {
    // What the program cannot do the user can.
    startGuidedControlCenter();
    return;
  }
  services_.menuBar.defaults.setBoolean(soundReplacedKey, true);
  replacedAt_ = services_.menuBar.clock.mediaTime();
  dismissHelper();
  setStatus(SetupStep::controlCenter, StepStatus::working);
  prepare();
  startPolling();
}

void OnboardingController::prepare() {
  areControlsPrepared_ = !prepareControls;
  if (prepareControls) {
    prepareControls([this, life = std::weak_ptr<int>(life_)] {
      if (!life.expired()) {
        areControlsPrepared_ = true;
      }
    });
  }
}

void OnboardingController::startGuidedControlCenter() {
  setStatus(SetupStep::controlCenter, StepStatus::inSettings);
  presentHelper(SetupStep::controlCenter);
  startPolling();
}

void OnboardingController::startPolling() {
  poll_ = services_.menuBar.mainQueue.every(pollInterval, [this] { poll(); });
}

void OnboardingController::poll() {
  std::array<StepStatus, setupSteps.size()> before{};
  std::ranges::transform(setupSteps, before.begin(),
                         [this](SetupStep step) { return state.statusOf(step); });
  refreshState();
  for (const SetupStep step : setupSteps) {
    if (before[static_cast<std::size_t>(step)] != StepStatus::done &&
        state.statusOf(step) == StepStatus::done) {
      complete(step);
    }
  }
  if (state.controlCenter.get() == StepStatus::working) {
    checkReplacement();
  } else if (state.controlCenter.get() == StepStatus::inSettings &&
             facts_.layout() == SetupFacts::Layout::whole) {
    if (onTilesAddedByHand) {
      onTilesAddedByHand();
    }
    completeControlCenter();
  }
  if (state.soundIcon.get() == StepStatus::inSettings && facts_.isSoundIconHidden()) {
    completeSoundIcon();
  }
}

/// It is done when another Control Center runs than before, and has left the layout as it is.
void OnboardingController::checkReplacement() {
  const bool isBack = !std::ranges::includes(oldControlCenters_, facts_.controlCenters());
  if (isBack && areControlsPrepared_ && facts_.layout() == SetupFacts::Layout::whole) {
    completeControlCenter();
  } else if (services_.menuBar.clock.mediaTime() - replacedAt_ >= restartTimeout) {
    isControlCenterLate_ = true;
    setStatus(SetupStep::controlCenter, StepStatus::active);
    poll_.reset();
  }
}

void OnboardingController::complete(SetupStep step) {
  switch (step) {
    case SetupStep::audio:
      return audioGranted();
    case SetupStep::accessibility:
      return completeAccessibility();
    case SetupStep::controlCenter:
      return completeControlCenter();
    case SetupStep::soundIcon:
      return completeSoundIcon();
  }
}

void OnboardingController::audioGranted() {
  model_.refreshPermission();
  completed(SetupStep::audio);
}

void OnboardingController::completeAccessibility() {
  completed(SetupStep::accessibility);
}

void OnboardingController::completeControlCenter() {
  rememberReplacement();
  completed(SetupStep::controlCenter);
}

void OnboardingController::completeSoundIcon() {
  completed(SetupStep::soundIcon);
}

void OnboardingController::skipSoundIcon() {
  const bool wasElsewhere = isInProgress(SetupStep::soundIcon);
  dismissHelper();
  completed(SetupStep::soundIcon);
  if (wasElsewhere) {
    bringBack();
  }
}

void OnboardingController::completed(SetupStep step) {
  setStatus(step, StepStatus::done);
  activateNextStep();
  if (std::ranges::none_of(setupSteps, [this](SetupStep each) { return isInProgress(each); })) {
    poll_.reset();
  }
  // One for another step goes on: its step is not done.
  if (isHelperPresented() && !guides_->helper.isLeaving() &&
      guides_->helper.state.kind.get() == kindOf(step)) {
    guides_->helper.succeed([this] {
      bringBack();
      dismissHelper();
    });
  }
}

/// Also of what an earlier run of the program had begun, or the user has done by hand: Sound is to
/// come back when the program ends.
void OnboardingController::rememberReplacement() {
  services_.menuBar.defaults.setBoolean(soundReplacedKey, true);
  isSoundReplaced_ = facts_.layout() == SetupFacts::Layout::whole;
  updatePage();
}

void OnboardingController::wentBack() {
  cancelTest();
  resetInProgressSteps();
  activateNextStep();
  dismissHelper();
  bringBack();
}

/// The user's word counts where the program cannot see for itself.
void OnboardingController::saidDone() {
  if (isTesting_) {
    cancelTest();
    return;
  }
  poll();
  if (state.controlCenter.get() != StepStatus::inSettings) {
    return;
  }
  if (facts_.layout() == SetupFacts::Layout::unreadable) {
    completeControlCenter();
  } else {
    helper().state.controlCenterRetry.set(true);
  }
}

void OnboardingController::askInstead() {
  if (helper().state.kind.get() == Kind::accessibility) {
    services_.accessibility.requestTrust();
  } else if (helper().state.kind.get() == Kind::audioPermission) {
    permission_.request([this, life = std::weak_ptr<int>(life_)](bool isGranted) {
      if (life.expired()) {
        return;
      }
      if (!isGranted && isHelperPresented() && helper().state.kind.get() == Kind::audioPermission) {
        helper().state.awaitingApproval.set(false);
      }
    });
  }
}

}  // namespace plemora
