#pragma once

#include <QString>

#include "onboarding/helper_view.h"
#include "views/view_binding.h"

namespace plemora {

/// A HelperView for QML: its page as properties, and what the user does as calls. Main thread.
class HelperBinding : public ViewBinding {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("There is one for each helper.")
  Q_PROPERTY(QString instructions READ instructions NOTIFY pageChanged)
  Q_PROPERTY(QString spokenInstructions READ spokenInstructions NOTIFY pageChanged)
  Q_PROPERTY(QString note READ note NOTIFY pageChanged)
  Q_PROPERTY(bool pointsUp READ pointsUp NOTIFY pageChanged)
  Q_PROPERTY(bool pointsLeft READ pointsLeft NOTIFY pageChanged)
  Q_PROPERTY(bool pointsRight READ pointsRight NOTIFY pageChanged)
  Q_PROPERTY(bool hasDragIcon READ hasDragIcon NOTIFY pageChanged)
  Q_PROPERTY(bool isDragging READ isDragging NOTIFY pageChanged)
  Q_PROPERTY(bool isBusy READ isBusy NOTIFY pageChanged)
  Q_PROPERTY(bool hasSucceeded READ hasSucceeded NOTIFY pageChanged)
  Q_PROPERTY(QString backTitle READ backTitle NOTIFY pageChanged)
  Q_PROPERTY(QString askTitle READ askTitle NOTIFY pageChanged)
  Q_PROPERTY(QString doneTitle READ doneTitle NOTIFY pageChanged)

 public:
  /// Both outlive it.
  HelperBinding(HelperView& view, Appearance& appearance);

  /// Styled text with the symbols as pictures in the height of the text.
  QString instructions() const;
  /// The same without the symbols, for the screen reader.
  QString spokenInstructions() const;
  QString note() const { return QString::fromStdString(page().note); }
  bool pointsUp() const { return page().direction == HelperPage::Direction::above; }
  bool pointsLeft() const { return page().direction == HelperPage::Direction::left; }
  bool pointsRight() const { return page().direction == HelperPage::Direction::right; }
  bool hasDragIcon() const { return page().hasDragIcon; }
  bool isDragging() const { return page().isDragging; }
  bool isBusy() const { return page().isBusy; }
  bool hasSucceeded() const { return page().hasSucceeded; }
  QString backTitle() const { return QString::fromStdString(page().backTitle); }
  QString askTitle() const { return QString::fromStdString(page().askTitle); }
  QString doneTitle() const { return QString::fromStdString(page().doneTitle); }

  Q_INVOKABLE void goBack();
  Q_INVOKABLE void askInstead();
  Q_INVOKABLE void done();
  Q_INVOKABLE void drag();

 signals:
  void pageChanged();

 private:
  const HelperPage& page() const { return view_.page.get(); }

  HelperView& view_;
  Subscription subscription_;
};

}  // namespace plemora
