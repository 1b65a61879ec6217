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

void QtApplication::terminate() {
  QMetaObject::invokeMethod(qGuiApp, &QCoreApplication::quit, Qt::QueuedConnection);
}

}  // namespace plemora
