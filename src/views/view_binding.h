#pragma once

#include <QtQml/qqmlregistration.h>

#include <QObject>

#include "base/published.h"
#include "platform/appearance.h"

namespace plemora {

/// What every view of setup follows besides its page. Main thread.
class ViewBinding : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("There is one for each view.")
  Q_PROPERTY(bool isDark READ isDark NOTIFY isDarkChanged)
  Q_PROPERTY(bool isOpaque READ isOpaque NOTIFY isOpaqueChanged)
  Q_PROPERTY(bool isVisible READ isVisible NOTIFY animatesChanged)
  Q_PROPERTY(bool animates READ animates NOTIFY animatesChanged)
  Q_PROPERTY(bool showsFocus READ showsFocus NOTIFY showsFocusChanged)

 public:
  /// The appearance outlives it.
  explicit ViewBinding(Appearance& appearance);

  bool isDark() const { return isDark_; }
  /// Whether the view paints its own ground, for windows that have none.
  bool isOpaque() const { return isOpaque_; }
  bool isVisible() const { return isVisible_; }
  /// Whether anything may move: while it is seen, by somebody who does not mind.
  bool animates() const { return animates_; }
  bool showsFocus() const { return showsFocus_; }

  void setOpaque(bool isOpaque);
  void setVisible(bool isVisible);
  void setShowsFocus(bool showsFocus);

 signals:
  void isDarkChanged();
  void isOpaqueChanged();
  void animatesChanged();
  void showsFocusChanged();

 protected:
  /// Asks anew whether things may move.
  void updateMotion();

 private:
  Appearance& appearance_;
  bool isDark_;
  bool isOpaque_ = false;
  bool isVisible_ = false;
  bool animates_ = false;
  bool showsFocus_ = false;
  Subscription subscription_;
};

}  // namespace plemora
