#pragma once

#include <QObject>
#include <QPointer>
#include <functional>

class QQuickItem;
class QQuickWindow;

namespace plemora {

/// Tells whether the focused control is to be marked: from the first key until the pointer is
/// used, in whichever window the item lies. Main thread.
class FocusWatch : public QObject {
 public:
  explicit FocusWatch(std::function<void(bool showsFocus)> changed);

  /// The item outlives the watch, or goes with its window.
  void watch(QQuickItem& item);

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void watchWindow(QQuickWindow* window);

  std::function<void(bool)> changed_;
  QPointer<QQuickWindow> window_;
};

}  // namespace plemora
