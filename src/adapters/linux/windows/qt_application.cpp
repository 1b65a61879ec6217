#include "adapters/linux/windows/qt_application.h"

#include <QGuiApplication>
#include <QWindow>

namespace plemora {

std::vector<ApplicationWindow> QtApplication::windows() {
  std::vector<ApplicationWindow> result;
  for (const QWindow* window : QGuiApplication::topLevelWindows()) {
    result.push_back({window->objectName().toStdString(), window->isVisible()});
  }
  return result;
}

void QtApplication::activate() {
  for (QWindow* window : QGuiApplication::topLevelWindows()) {
    if (window->isVisible() && (window->flags() & Qt::FramelessWindowHint) == 0) {
      window->raise();
      window->requestActivate();
    }
  }
}

void QtApplication::terminate() {
  // Not quit(): the panel's window refuses to be closed, and so to let the program end.
  QMetaObject::invokeMethod(
      qGuiApp, [] { QCoreApplication::exit(); }, Qt::QueuedConnection);
}

}  // namespace plemora
