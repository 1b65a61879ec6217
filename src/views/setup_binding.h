#pragma once

#include <QRectF>
#include <QString>
#include <QStringList>
#include <map>
#include <string>

#include "onboarding/setup_view.h"
#include "views/view_binding.h"

namespace plemora {

/// A step of setup for QML.
struct SetupCardValue {
  Q_GADGET
  Q_PROPERTY(QString id MEMBER id)
  Q_PROPERTY(QString title MEMBER title)
  Q_PROPERTY(QString line MEMBER line)
  Q_PROPERTY(QString note MEMBER note)
  Q_PROPERTY(QString buttonTitle MEMBER buttonTitle)
  Q_PROPERTY(QString buttonLabel MEMBER buttonLabel)
  Q_PROPERTY(QString skipTitle MEMBER skipTitle)
  Q_PROPERTY(bool isButtonEnabled MEMBER isButtonEnabled)
  Q_PROPERTY(bool isPending MEMBER isPending)
  Q_PROPERTY(bool isActive MEMBER isActive)
  Q_PROPERTY(bool isInSettings MEMBER isInSettings)
  Q_PROPERTY(bool isWorking MEMBER isWorking)
  Q_PROPERTY(bool isDone MEMBER isDone)

 public:
  QString id;
  QString title;
  QString line;
  QString note;
  QString buttonTitle;
  QString buttonLabel;  ///< for assistive technology
  QString skipTitle;
  bool isButtonEnabled = false;
  // Exactly one of them.
  bool isPending = true;
  bool isActive = false;
  bool isInSettings = false;
  bool isWorking = false;
  bool isDone = false;
};

/// A SetupView for QML: its page as properties, and what the user does as calls. Main thread.
class SetupBinding : public ViewBinding {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("There is one for each window.")
  Q_PROPERTY(QString title READ title NOTIFY pageChanged)
  Q_PROPERTY(QString line READ line NOTIFY pageChanged)
  Q_PROPERTY(int cardCount READ cardCount NOTIFY pageChanged)
  Q_PROPERTY(int doneCards READ doneCards NOTIFY pageChanged)
  Q_PROPERTY(bool isComplete READ isComplete NOTIFY pageChanged)
  Q_PROPERTY(QStringList completeLines READ completeLines NOTIFY pageChanged)
  Q_PROPERTY(QString showTitle READ showTitle NOTIFY pageChanged)
  Q_PROPERTY(QString finishTitle READ finishTitle NOTIFY pageChanged)

 public:
  /// Both outlive it.
  SetupBinding(SetupView& view, Appearance& appearance);

  QString title() const { return QString::fromStdString(page().title); }
  QString line() const { return QString::fromStdString(page().line); }
  int cardCount() const { return static_cast<int>(page().cards.size()); }
  int doneCards() const { return static_cast<int>(page().doneCards); }
  bool isComplete() const { return page().isComplete; }
  QStringList completeLines() const;
  QString showTitle() const { return QString::fromStdString(page().showTitle); }
  QString finishTitle() const { return QString::fromStdString(page().finishTitle); }

  /// An empty one where there is none: views of cards that are gone ask too.
  Q_INVOKABLE plemora::SetupCardValue card(int index) const;
  Q_INVOKABLE void press(const QString& card);
  Q_INVOKABLE void skip(const QString& card);
  /// Passed on when it differs from what was last said of that card.
  Q_INVOKABLE void reportButtonFrame(const QString& card, const QRectF& frame);
  Q_INVOKABLE void show();
  Q_INVOKABLE void finish();

 signals:
  void pageChanged();

 private:
  const SetupPage& page() const { return view_.page.get(); }

  SetupView& view_;
  std::map<std::string, Rect> reported_;
  Subscription subscription_;
};

}  // namespace plemora
