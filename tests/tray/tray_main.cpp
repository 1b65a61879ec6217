#include <gtest/gtest.h>

#include <QGuiApplication>

// The toolkit draws into memory; what needs an X server brings one of its own.
int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  testing::InitGoogleTest(&argc, argv);
  const QGuiApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
