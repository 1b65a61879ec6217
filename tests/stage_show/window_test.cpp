#include <QCoreApplication>
#include <QMouseEvent>
#include <QTest>
#include <QWheelEvent>

#include "main/stage/stage_screen_window.h"
#include "stage_show/show_rig.h"

namespace plemora {
namespace {

/// The stage in a window of half its size.
struct StageScreenWindowTest : StageShowTest {
  int caughtUp = 0;
  StageScreenWindow real{desktop, show, [this] { ++caughtUp; }};

  void SetUp() override {
    StageShowTest::SetUp();
    real.resize(640, 400);
    real.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&real));
  }
};

TEST_F(StageScreenWindowTest, ThePointerGoesToWhatIsSeenThere) {
  const auto window =
      makeWindow({200, 500, 200, 100},
                 "Rectangle { color: area.pressed ? 'red' : 'blue'; MouseArea { id: area; "
                 "anchors.fill: parent; acceptedButtons: Qt.LeftButton } }");
  // The middle of it: 300, 550 from the bottom left of 1280 x 800.
  const QPoint inside(150, 125);
  QTest::mousePress(&real, Qt::RightButton, {}, inside);
  EXPECT_EQ(colorAt({300, 550}), QColor("blue"));
  QTest::mouseRelease(&real, Qt::RightButton, {}, inside);
  QTest::mousePress(&real, Qt::LeftButton, {}, inside);
  EXPECT_EQ(desktop.input.pointerLocation(), (Point{300, 550}));
  EXPECT_EQ(colorAt({300, 550}), QColor("red"));
  QTest::mouseRelease(&real, Qt::LeftButton, {}, inside);
  EXPECT_EQ(colorAt({300, 550}), QColor("blue"));
  EXPECT_GE(caughtUp, 4);
  QTest::mouseMove(&real, {10, 390});
  EXPECT_EQ(desktop.input.pointerLocation(), (Point{20, 20}));
}

TEST_F(StageScreenWindowTest, KeepsTheProportionsAndPlacesBesideThePictureAreItsEdge) {
  real.resize(640, 800);  // 200 of black above and below
  QCoreApplication::processEvents();
  QTest::mouseMove(&real, {320, 400});
  EXPECT_EQ(desktop.input.pointerLocation(), (Point{640, 400}));
  QTest::mouseMove(&real, {320, 10});
  EXPECT_EQ(desktop.input.pointerLocation(), (Point{640, 800}));
}

TEST_F(StageScreenWindowTest, KeysGoOnToTheWindowThatHasThemThere) {
  desktop.program.start("com.quorvane.mixer", "Plemora");
  real.requestActivate();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&real));
  const auto window = makeWindow({200, 500, 200, 100},
                                 "Rectangle { focus: true; color: 'blue'\n"
                                 "  Keys.onSpacePressed: color = 'red' }");
  window->order(WindowOrder::keyAndFront);
  EXPECT_EQ(colorAt({300, 550}), QColor("blue"));
  QTest::keyClick(&real, Qt::Key_Space);
  EXPECT_EQ(colorAt({300, 550}), QColor("red"));
}

TEST_F(StageScreenWindowTest, TheWheelGoesOn) {
  desktop.program.start("com.quorvane.mixer", "Plemora");
  const auto window = makeWindow(
      {200, 500, 200, 100},
      "Rectangle { property int turned\n"
      "  color: Qt.rgba(turned > 0 ? 1 : 0, 0, 0, 1)\n"
      "  MouseArea { anchors.fill: parent; onWheel: wheel => turned += wheel.angleDelta.y } }");
  window->order(WindowOrder::keyAndFront);
  EXPECT_EQ(colorAt({300, 550}), QColor(Qt::black));
  QWheelEvent wheel({150, 125}, {150, 125}, {}, {0, 120}, {}, {}, Qt::NoScrollPhase, false);
  QCoreApplication::sendEvent(&real, &wheel);
  EXPECT_EQ(colorAt({300, 550}), QColor(Qt::red));
}

}  // namespace
}  // namespace plemora
