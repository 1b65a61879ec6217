#include "onboarding/onboarding_controller.h"

#include <algorithm>
#include <array>
#include <exception>
#include <utility>

#include "audio/mixer_model.h"
#include "controlcenter/control_center_layout.h"
#include "menubar/status_item_controller.h"
#include "onboarding/onboarding_guides.h"
#include "onboarding/setup_page.h"
#include "platform/screens.h"
#include "platform/user_defaults.h"

namespace plemora {

OnboardingController::OnboardingController(MixerModel& model, StatusItemController& statusItem,
                                           OnboardingServices services)
    : onAudio([this] { startAudio(); }),
      onAccessibility([this] { startAccessibility(); }),
      onControlCenter([this] { startControlCenter(); }),
      onSoundIcon([this] { startSoundIcon(); }),
      replaceSound([this] { return replaceByLayout(); }),
      model_(model),
      statusItem_(statusItem),
      services_(std::move(services)),
      permission_(services_.consent, services_.menuBar.mainQueue) {
  makeWindow();
  tests_.emplace(services_.menuBar.mainQueue);
  wireView();
  observeState();
}

OnboardingController::~OnboardingController() = default;

bool OnboardingController::replaceByLayout() {
  try {
    services_.layout.replaceSound();
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

void OnboardingController::makeWindow() {
  window_ = std::make_unique<SetupWindow>(services_.menuBar, view_, services_.contents.makeSetup);
  window_->windowWillClose = [this] { windowWillClose(); };
}

void OnboardingController::wireView() {
  view_.onButton = [this](const std::string& id) {
    const auto step = setupStep(id);
    if (step && isReached(*step)) {
      const std::array actions{onAudio, onAccessibility, onControlCenter, onSoundIcon};
      actions[static_cast<std::size_t>(*step)]();
    }
  };
  view_.onSkip = [this](const std::string& id) {
    if (setupStep(id) == SetupStep::soundIcon && isReached(SetupStep::soundIcon)) {
      skipSoundIcon();
    }
  };
  view_.onButtonFrame = [this](const std::string& id, const Rect& frame) {
    buttonMoved(id, frame);
  };
  view_.onShow = [this] { pointAtIcon(); };
  view_.onFinish = [this] { finish(); };
}

void OnboardingController::observeState() {
  for (const SetupStep step : setupSteps) {
    cancellables_.push_back(state.status(step).subscribe([this](StepStatus) { updatePage(); }));
  }
  cancellables_.push_back(state.supportsControlCenter.subscribe([this](bool) { updatePage(); }));
  updatePage();
}

void OnboardingController::updatePage() {
  SetupPage page = setupPage(state, isSoundReplaced_, isControlCenterLate_);
  if (page != view_.page.get()) {
    view_.page.set(std::move(page));
  }
}

void OnboardingController::setStatus(SetupStep step, StepStatus status) {
  if (state.statusOf(step) != status) {
    state.status(step).set(status);
  }
}

/// Whether the user may begin it, or begin it again.
bool OnboardingController::isReached(SetupStep step) const {
  const StepStatus status = state.statusOf(step);
  return status == StepStatus::active || status == StepStatus::inSettings;
}

bool OnboardingController::isInProgress(SetupStep step) const {
  const StepStatus status = state.statusOf(step);
  return status == StepStatus::inSettings || status == StepStatus::working;
}

void OnboardingController::show() {
  cancelTest();
  if (window_->isShown()) {
    window_->show();
    return;
  }
  for (const SetupStep step : setupSteps) {
    setStatus(step, StepStatus::pending);
  }
  isSoundReplaced_ = false;
  isControlCenterLate_ = false;
  state.supportsControlCenter.set(facts_.canReplaceSound());
  refreshState();
  if (isSoundReplaced_ &&
      !services_.menuBar.defaults.boolean(didCompleteSetupKey).value_or(false)) {
    prepare();  // setup may have been ended in the midst of that
  }
  if (guides_) {
    guides_->pointer.hide();
  }
  window_->show();
}

void OnboardingController::bringBack() {
  if (window_->isShown()) {
    window_->show();
  }
}

void OnboardingController::refreshState() {
  if (facts_.isAudioGranted()) {
    if (model_.permission.get() != AudioPermission::Status::granted) {
      model_.refreshPermission();
    }
    setStatus(SetupStep::audio, StepStatus::done);
  } else if (state.audio.get() != StepStatus::inSettings) {
    setStatus(SetupStep::audio, StepStatus::active);
  }
  if (facts_.isTrusted()) {
    setStatus(SetupStep::accessibility, StepStatus::done);
  }
  refreshControlCenter();
  if (!isInProgress(SetupStep::soundIcon) && facts_.isSoundIconHidden()) {
    setStatus(SetupStep::soundIcon, StepStatus::done);
  }
  activateNextStep();
}

void OnboardingController::refreshControlCenter() {
  if (isInProgress(SetupStep::controlCenter) || state.controlCenter.get() == StepStatus::done) {
    return;
  }
  if (facts_.layout() == SetupFacts::Layout::whole) {
    rememberReplacement();
    setStatus(SetupStep::controlCenter, StepStatus::done);
  } else if (!state.supportsControlCenter.get()) {
    setStatus(SetupStep::controlCenter, StepStatus::done);
  }
}

/// One step at a time, in their order.
void OnboardingController::activateNextStep() {
  bool isFirst = true;
  for (const SetupStep step : setupSteps) {
    const StepStatus status = state.statusOf(step);
    if (status == StepStatus::done) {
      continue;
    }
    if (!isInProgress(step)) {
      setStatus(step, isFirst ? StepStatus::active : StepStatus::pending);
    }
    isFirst = false;
  }
}

void OnboardingController::resetInProgressSteps() {
  for (const SetupStep step : setupSteps) {
    if (isInProgress(step)) {
      setStatus(step, StepStatus::active);
    }
  }
}

void OnboardingController::buttonMoved(const std::string& id, const Rect& inContent) {
  const auto step = setupStep(id);
  if (!step) {
    return;
  }
  if (inContent.isEmpty()) {
    buttonsInContent_.erase(*step);
  } else {
    buttonsInContent_[*step] = inContent;
  }
  publishButtonFrames();
}

void OnboardingController::publishButtonFrames() {
  std::map<SetupStep, Rect> frames;
  for (const auto& [step, frame] : buttonsInContent_) {
    frames[step] = window_->onScreen(frame);
  }
  if (frames != state.buttonFrames.get()) {
    state.buttonFrames.set(std::move(frames));
  }
}

/// As the window stands now; without a button, the window's middle.
Rect OnboardingController::buttonFrame(SetupStep step) {
  publishButtonFrames();
  const auto& frames = state.buttonFrames.get();
  const auto found = frames.find(step);
  if (found != frames.end()) {
    return found->second;
  }
  const Rect window = window_->frame();
  return {window.midX(), window.midY(), 0, 0};
}

void OnboardingController::finish() {
  endFlow();
  if (window_->isShown()) {
    window_->fadeOut([this] { pointAtIcon(); });
  } else {
    pointAtIcon();
  }
}

void OnboardingController::windowWillClose() {
  buttonsInContent_.clear();
  endFlow();
}

void OnboardingController::endFlow() {
  cancelTest();
  poll_.reset();
  dismissHelper();
  resetInProgressSteps();
  if (state.isComplete()) {
    services_.menuBar.defaults.setBoolean(didCompleteSetupKey, true);
    if (onComplete) {
      onComplete();
    }
  }
}

void OnboardingController::pointAtIcon() {
  if (const auto icon = statusItem_.iconFrame()) {
    guides().pointer.show(*icon,
                          [this] { statusItem_.open(StatusItemController::Anchor::menuBar); });
  }
}

void OnboardingController::tearDown() {
  if (window_->isShown() && state.isComplete()) {
    services_.menuBar.defaults.setBoolean(didCompleteSetupKey, true);
  }
  life_ = std::make_shared<int>(0);
  cancelTest();
  poll_.reset();
  guides_.reset();
  makeWindow();
  resetInProgressSteps();
}

OnboardingController::Guides& OnboardingController::guides() {
  if (!guides_) {
    guides_ = std::make_unique<Guides>(services_);
    DockedHelper& helper = guides_->helper;
    helper.onBack = [this] { wentBack(); };
    helper.onDone = [this] { saidDone(); };
    helper.onAskInstead = [this] { askInstead(); };
  }
  return *guides_;
}

DockedHelper& OnboardingController::helper() {
  return guides().helper;
}

bool OnboardingController::isHelperPresented() const {
  return guides_ && guides_->helper.isPresented();
}

void OnboardingController::dismissHelper() {
  if (guides_) {
    guides_->helper.leave();
  }
}

void OnboardingController::testHelper() {
  cancelTest();
  testNext(0);
}

void OnboardingController::testNext(std::size_t index) {
  using Kind = HelperState::Kind;
  static constexpr std::array kinds{Kind::audioPermission, Kind::accessibility, Kind::controlCenter,
                                    Kind::hideSoundIcon};
  if (index >= kinds.size()) {
    isTesting_ = false;
    return;
  }
  isTesting_ = true;
  const auto& screens = services_.menuBar.screens.screens().get();
  const Rect visible = screens.empty() ? Rect{} : screens.front().visibleFrame;
  helper().present(kinds[index], {visible.midX(), visible.midY(), 0, 0});
  tests_->after(testTime, [this, index] {
    dismissHelper();
    tests_->after(testPause, [this, index] { testNext(index + 1); });
  });
}

void OnboardingController::cancelTest() {
  tests_.emplace(services_.menuBar.mainQueue);
  if (std::exchange(isTesting_, false)) {
    dismissHelper();
  }
}

}  // namespace plemora
