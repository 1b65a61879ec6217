#include "views/setup_binding.h"

namespace plemora {

SetupBinding::SetupBinding(SetupView& view, Appearance& appearance)
    : ViewBinding(appearance),
      view_(view),
      subscription_(view.page.subscribe([this](const SetupPage&) {
        updateMotion();
        emit pageChanged();
      })) {}

QStringList SetupBinding::completeLines() const {
  QStringList lines;
  for (const std::string& line : page().completeLines) {
    lines.append(QString::fromStdString(line));
  }
  return lines;
}

SetupCardValue SetupBinding::card(int index) const {
  SetupCardValue value;
  if (index < 0 || index >= cardCount()) {
    return value;
  }
  const SetupCard& card = page().cards[static_cast<std::size_t>(index)];
  value.id = QString::fromStdString(card.id);
  value.title = QString::fromStdString(card.title);
  value.line = QString::fromStdString(card.line);
  value.note = QString::fromStdString(card.note);
  value.buttonTitle = QString::fromStdString(card.buttonTitle);
  value.buttonLabel = QString::fromStdString(card.buttonLabel());
  value.skipTitle = QString::fromStdString(card.skipTitle);
  value.isButtonEnabled = card.isButtonEnabled;
  value.isPending = card.status == StepStatus::pending;
  value.isActive = card.status == StepStatus::active;
  value.isInSettings = card.status == StepStatus::inSettings;
  value.isWorking = card.status == StepStatus::working;
  value.isDone = card.status == StepStatus::done;
  return value;
}

void SetupBinding::press(const QString& card) {
  if (view_.onButton) {
    view_.onButton(card.toStdString());
  }
}

void SetupBinding::skip(const QString& card) {
  if (view_.onSkip) {
    view_.onSkip(card.toStdString());
  }
}

void SetupBinding::reportButtonFrame(const QString& card, const QRectF& frame) {
  const Rect now{frame.x(), frame.y(), frame.width(), frame.height()};
  Rect& last = reported_[card.toStdString()];
  if (now != last) {
    last = now;
    if (view_.onButtonFrame) {
      view_.onButtonFrame(card.toStdString(), now);
    }
  }
}

void SetupBinding::show() {
  if (view_.onShow) {
    view_.onShow();
  }
}

void SetupBinding::finish() {
  if (view_.onFinish) {
    view_.onFinish();
  }
}

}  // namespace plemora
