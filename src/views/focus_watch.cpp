#include "views/focus_watch.h"

#include <QEvent>
#include <QKeyEvent>
#include <QQuickItem>
#include <QQuickWindow>
#include <utility>

namespace plemora {

namespace {

bool isModifier(int key) {
  return key == Qt::Key_Shift || key == Qt::Key_Control || key == Qt::Key_Alt ||
         key == Qt::Key_Meta;
}

}  // namespace

FocusWatch::FocusWatch(std::function<void(bool showsFocus)> changed)
    : changed_(std::move(changed)) {}

void FocusWatch::watch(QQuickItem& item) {
  connect(&item, &QQuickItem::windowChanged, this,
          [this](QQuickWindow* window) { watchWindow(window); });
  watchWindow(item.window());
}

void FocusWatch::watchWindow(QQuickWindow* window) {
  if (window_ != nullptr) {
    window_->removeEventFilter(this);
  }
  window_ = window;
  if (window_ != nullptr) {
    window_->installEventFilter(this);
  }
}

bool FocusWatch::eventFilter(QObject*, QEvent* event) {
  if (event->type() == QEvent::KeyPress) {
    if (!isModifier(static_cast<QKeyEvent*>(event)->key())) {
      changed_(true);
    }
  } else if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::TouchBegin) {
    changed_(false);
  }
  return false;
}

}  // namespace plemora
