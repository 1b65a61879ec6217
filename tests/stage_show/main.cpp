#include <gtest/gtest.h>

#include <QAccessible>
#include <QGuiApplication>
#include <QQuickWindow>

#include "views/qt_warnings.h"

int main(int count, char** arguments) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  testing::InitGoogleTest(&count, arguments);
  QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
  QGuiApplication application(count, arguments);
  QAccessible::setActive(true);
  plemora::QtWarnings::install();
  return RUN_ALL_TESTS();
}
