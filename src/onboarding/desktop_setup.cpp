#include "onboarding/desktop_setup.h"

#include <utility>

#include "app/services/launch_at_login.h"
#include "onboarding/setup_page.h"
#include "platform/login_item.h"
#include "platform/user_defaults.h"

namespace plemora {

namespace {

const std::string audioId = "audio";
const std::string loginItemId = "loginItem";
const std::string trayIconId = "trayIcon";

SetupCard cardOf(const std::string& id, const std::string& title, const std::string& line,
                 StepStatus status) {
  SetupCard card;
  card.id = id;
  card.title = title;
  card.line = line;
  card.status = status;
  return card;
}

bool isSet(UserDefaults& defaults, const char* key) {
  return defaults.boolean(key).value_or(false);
}

}  // namespace

DesktopSetup::DesktopSetup(DesktopSetupServices services)
    : services_(std::move(services)),
      permission_(services_.consent, services_.menuBar.mainQueue),
      window_(services_.menuBar, view_, services_.makeContent, SetupGround::none) {
  // There is nobody to ask for trust, no Control Center, and no icon of the system's to hide.
  state_.supportsControlCenter.set(false);
  for (const SetupStep step :
       {SetupStep::accessibility, SetupStep::controlCenter, SetupStep::soundIcon}) {
    state_.status(step).set(StepStatus::done);
  }
  view_.onButton = [this](const std::string& id) {
    if (id == loginItemId) {
      startAtLogin();
    } else if (id == trayIconId) {
      trayIcon_ = StepStatus::done;
    }
    refresh();
  };
  view_.onSkip = [this](const std::string& id) {
    if (id == loginItemId) {
      skipLoginItem();
    }
    refresh();
  };
  view_.onShow = [this] {
    finish();
    if (onShowPanel) {
      onShowPanel();
    }
  };
  view_.onFinish = [this] { finish(); };
  window_.windowWillClose = [this] { poll_.reset(); };
}

DesktopSetup::~DesktopSetup() = default;

bool DesktopSetup::wasCompleted() const {
  return isSet(services_.menuBar.defaults, completeKey);
}

bool DesktopSetup::show() {
  if (!isShown()) {
    // Who opens it again wants to see again what was put aside before.
    isLoginItemSkipped_ = !wasCompleted() && isSet(services_.menuBar.defaults, skippedLoginItemKey);
    trayIcon_ = StepStatus::pending;
    isTrayIconHidden_ = false;
    loginItemProblem_.clear();
    refresh();
    poll_ = services_.menuBar.mainQueue.every(pollInterval, [this] { refresh(); });
  }
  const bool isShown = window_.show();
  if (!isShown) {
    poll_.reset();
  }
  return isShown;
}

void DesktopSetup::finish() {
  poll_.reset();
  window_.close();
}

void DesktopSetup::refresh() {
  state_.audio.set(permission_.status() == AudioPermission::Status::granted ? StepStatus::done
                                                                            : StepStatus::active);
  refreshLoginItem();
  refreshTrayIcon();
  if (isComplete() && !wasCompleted()) {
    services_.menuBar.defaults.setBoolean(completeKey, true);
  }
  if (SetupPage now = page(); now != view_.page.get()) {
    view_.page.set(std::move(now));
  }
}

void DesktopSetup::refreshLoginItem() {
  const bool isDone = isLoginItemSkipped_ || services_.loginItem.state() == LoginItemState::on;
  loginItem_ = isDone ? StepStatus::done : StepStatus::active;
}

void DesktopSetup::refreshTrayIcon() {
  if (const auto isShown = services_.showsTrayIcon(); isShown && *isShown) {
    trayIcon_ = StepStatus::done;
  } else if (isShown && trayIcon_ != StepStatus::done) {
    trayIcon_ = StepStatus::active;
    isTrayIconHidden_ = true;
  }
}

void DesktopSetup::startAtLogin() {
  loginItemProblem_ = services_.loginItem.enable().value_or("");
  if (loginItemProblem_.empty()) {
    services_.menuBar.defaults.setBoolean(LaunchAtLogin::key, true);
    services_.menuBar.defaults.remove(skippedLoginItemKey);
    isLoginItemSkipped_ = false;
  }
}

void DesktopSetup::skipLoginItem() {
  services_.menuBar.defaults.setBoolean(skippedLoginItemKey, true);
  isLoginItemSkipped_ = true;
}

bool DesktopSetup::isComplete() const {
  return state_.isComplete() && loginItem_ == StepStatus::done && trayIcon_ == StepStatus::done;
}

SetupPage DesktopSetup::page() const {
  SetupPage page;
  page.title = setup_texts::windowTitle;
  page.line = "A volume for every app, in a moment.";
  page.cards = {audioCard(), loginItemCard()};
  if (isTrayIconHidden_) {
    page.cards.push_back(trayIconCard());
  }
  for (const SetupCard& card : page.cards) {
    page.doneCards += card.status == StepStatus::done ? 1 : 0;
  }
  page.finishTitle = setup_texts::finishLaterTitle;
  if (isComplete()) {
    page.isComplete = true;
    page.title = setup_texts::completeTitle;
    page.completeLines =
        services_.showsTrayIcon().value_or(false)
            ? std::vector<std::string>{"Set the volume of every app, right from the tray.",
                                       "Click Plemora's icon there whenever you want its panel."}
            : std::vector<std::string>{"Set the volume of every app, right from Plemora's panel.",
                                       "Start Plemora once more whenever you want it."};
    page.showTitle = setup_texts::showTitle;
    page.finishTitle = setup_texts::finishTitle;
  }
  return page;
}

SetupCard DesktopSetup::audioCard() const {
  SetupCard card =
      cardOf(audioId, setup_texts::audioTitle, setup_texts::audioLine, state_.audio.get());
  if (card.status != StepStatus::done) {
    card.note = services_.audioAdvice();
  }
  return card;
}

SetupCard DesktopSetup::loginItemCard() const {
  SetupCard card = cardOf(loginItemId, "Start at login",
                          "Keeps every app at its volume, from the start.", loginItem_);
  if (card.status == StepStatus::done) {
    if (isLoginItemSkipped_) {
      card.line = "Plemora waits until you start it.";
    }
    return card;
  }
  const bool hasFailed = !loginItemProblem_.empty();
  card.note = hasFailed ? "That did not work: " + loginItemProblem_ + "." : "";
  card.buttonTitle = hasFailed ? "Try Again" : "Turn On";
  card.skipTitle = "Not Now";
  return card;
}

SetupCard DesktopSetup::trayIconCard() const {
  SetupCard card = cardOf(trayIconId, "Find Plemora without a tray",
                          "This desktop shows no tray icons.", trayIcon_);
  if (services_.showsTrayIcon().value_or(false)) {
    card.title = "Find Plemora in the tray";
    card.line = "Its icon is there now.";
  } else if (card.status != StepStatus::done) {
    card.note = services_.trayAdvice;
    card.buttonTitle = "Got It";
  }
  return card;
}

}  // namespace plemora
