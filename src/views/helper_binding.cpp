#include "views/helper_binding.h"

#include <QUrl>

namespace plemora {

namespace {

constexpr int symbolSide = 17;  // points, of one between words

QString styled(const HelperRun& run) {
  if (!run.symbol.empty()) {
    const QString name =
        QString::fromLatin1(QUrl::toPercentEncoding(QString::fromStdString(run.symbol)));
    return QString("<img src=\"image://symbol/%1\" width=\"%2\" height=\"%2\" align=\"middle\">")
        .arg(name)
        .arg(symbolSide);
  }
  const QString text = QString::fromStdString(run.text).toHtmlEscaped();
  return run.isStrong ? "<b>" + text + "</b>" : text;
}

}  // namespace

HelperBinding::HelperBinding(HelperView& view, Appearance& appearance)
    : ViewBinding(appearance),
      view_(view),
      subscription_(view.page.subscribe([this](const HelperPage&) {
        updateMotion();
        emit pageChanged();
      })) {}

QString HelperBinding::instructions() const {
  QString text;
  for (const HelperRun& run : page().instructions) {
    text += styled(run);
  }
  return text;
}

QString HelperBinding::spokenInstructions() const {
  QString text;
  for (const HelperRun& run : page().instructions) {
    text += QString::fromStdString(run.text);
  }
  return text.simplified();
}

void HelperBinding::goBack() {
  if (view_.onBack) {
    view_.onBack();
  }
}

void HelperBinding::askInstead() {
  if (view_.onAskInstead) {
    view_.onAskInstead();
  }
}

void HelperBinding::done() {
  if (view_.onDone) {
    view_.onDone();
  }
}

void HelperBinding::drag() {
  if (view_.onDrag) {
    view_.onDrag();
  }
}

}  // namespace plemora
