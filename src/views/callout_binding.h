#pragma once

#include <QString>

#include "onboarding/helper_view.h"
#include "views/view_binding.h"

namespace plemora {

/// A CalloutView for QML. Main thread.
class CalloutBinding : public ViewBinding {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("There is one for each callout.")
  Q_PROPERTY(QString title READ title CONSTANT)
  Q_PROPERTY(QString line READ line CONSTANT)
  Q_PROPERTY(QString buttonTitle READ buttonTitle CONSTANT)
  Q_PROPERTY(QString buttonSymbol READ buttonSymbol CONSTANT)

 public:
  /// Both outlive it.
  CalloutBinding(CalloutView& view, Appearance& appearance)
      : ViewBinding(appearance), view_(view) {}

  QString title() const { return QString::fromStdString(view_.title); }
  QString line() const { return QString::fromStdString(view_.line); }
  QString buttonTitle() const { return QString::fromStdString(view_.buttonTitle); }
  QString buttonSymbol() const { return QString::fromStdString(view_.buttonSymbol); }

  Q_INVOKABLE void open();

 private:
  CalloutView& view_;
};

}  // namespace plemora
