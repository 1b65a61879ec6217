#include <gtest/gtest.h>

#include <algorithm>

#include "windows/test_panel.h"

namespace plemora {

namespace {

constexpr unsigned background = 0x305070;
constexpr unsigned blue = 0x0000ff;
constexpr unsigned green = 0x00ff00;

const DisplaySetup bare{"Bare"};
const DisplaySetup managed{"Managed", true};
const DisplaySetup composited{"Composited", true, true};
const DisplaySetup compositedAlone{"CompositedAlone", false, true};

class Panel : public testing::TestWithParam<DisplaySetup> {
 protected:
  /// 308x400, 50 from the left and the top of the screen.
  static constexpr Rect frame{50, 250, 308, 400};
  static constexpr QPoint squareAt{50 + 150, 50 + 110};
  static constexpr QPoint emptyAt{50 + 30, 50 + 300};

  bool waitForPixel(const QPoint& point, unsigned color) {
    const bool isThere = waitUntil([&] { return world.display.pixel(point) == color; });
    EXPECT_EQ(world.display.pixel(point), color);
    return isThere;
  }

  TestDesktop world{GetParam()};
};

std::string nameOf(const testing::TestParamInfo<DisplaySetup>& info) {
  return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(On, Panel, testing::Values(bare, managed, composited, compositedAlone),
                         nameOf);

TEST_P(Panel, LiesExactlyWhereItIsPut) {
  const auto panel = world.makePanel(frame);
  EXPECT_EQ(TestDesktop::idOf(), XCB_WINDOW_NONE);
  EXPECT_FALSE(world.view->isBuilt());
  EXPECT_FALSE(panel->isOnScreen());
  panel->order(WindowOrder::keyAndFront);
  EXPECT_TRUE(panel->isOnScreen());
  EXPECT_EQ(panel->screen(), world.desktop.screens().screens().get().at(0).id);
  EXPECT_TRUE(waitForPixel(squareAt, TestView::color));
  const auto id = TestDesktop::idOf();
  EXPECT_EQ(world.display.frameOf(id), QRect(50, 50, 308, 400));
  // The content keeps to the top edge while the height changes.
  panel->setFrame({60, 190.4, 308, 460});
  EXPECT_TRUE(waitForPixel(squareAt + QPoint(10, 0), TestView::color));
  EXPECT_EQ(world.display.frameOf(id), QRect(60, 50, 308, 460));
  EXPECT_EQ(panel->frame(), (Rect{60, 190.4, 308, 460}));
  panel->order(WindowOrder::out);
  EXPECT_FALSE(panel->isOnScreen());
  EXPECT_TRUE(waitForPixel(squareAt, background));
  panel->setFrame({0, 0, 308, 460});
  panel->order(WindowOrder::front);
  EXPECT_TRUE(waitUntil([&] { return world.display.frameOf(id) == QRect(0, 240, 308, 460); }));
  EXPECT_EQ(TestDesktop::idOf(), id);
}

TEST_P(Panel, ShowsWhatIsBehindWhereItShowsNothing) {
  const auto window = world.display.makeWindow({0, 0, 100, 500}, blue);
  const auto panel = world.makePanel(frame);
  panel->order(WindowOrder::front);
  EXPECT_TRUE(waitForPixel(squareAt, TestView::color));
  EXPECT_TRUE(waitForPixel(emptyAt, blue));
  EXPECT_TRUE(waitForPixel(emptyAt + QPoint(100, 0), background));
  world.display.paint(window, {0, 0, 100, 500}, green);
  EXPECT_TRUE(waitForPixel(emptyAt, green));
}

TEST_P(Panel, FadesAsAWhole) {
  const auto panel = world.makePanel(frame);
  panel->setAlpha(0);
  panel->order(WindowOrder::front);
  const auto id = TestDesktop::idOf();
  ASSERT_TRUE(waitUntil([&] { return world.display.frameOf(id) == QRect(50, 50, 308, 400); }));
  settle();
  EXPECT_TRUE(waitForPixel(squareAt, background));
  panel->setAlpha(0.5);
  EXPECT_TRUE(waitUntil([&] { return world.display.pixel(squareAt) != background; }));
  // Half of 0xff2040 on 0x305070.
  EXPECT_TRUE(waitUntil([&] {
    const unsigned pixel = world.display.pixel(squareAt);
    return std::abs(static_cast<int>(pixel >> 16) - 0x97) < 4 &&
           std::abs(static_cast<int>(pixel >> 8 & 0xff) - 0x38) < 4 &&
           std::abs(static_cast<int>(pixel & 0xff) - 0x58) < 4;
  })) << std::hex
      << world.display.pixel(squareAt);
  EXPECT_EQ(panel->alpha(), 0.5);
  panel->setAlpha(7);
  EXPECT_EQ(panel->alpha(), 1);
  EXPECT_TRUE(waitForPixel(squareAt, TestView::color));
}

TEST_P(Panel, ShowsSeveralViewsInAPartOfIt) {
  // The square's middle is 150 to the right of a view's corner and 110 below it.
  const QPoint above = squareAt + QPoint(0, -40);
  const QPoint below = squareAt + QPoint(0, 60);
  const auto panel = world.makePanel(frame);
  const auto second = std::make_shared<TestView>();
  const auto show = [&](double y, double alpha) {
    panel->surface().setContents({{world.view, {}, 1}, {second, {0, y, 308, 400}, alpha}});
  };
  panel->surface().setContainer({0, 0, 308, 300}, 15);
  show(-40, 1);
  panel->order(WindowOrder::front);
  EXPECT_TRUE(waitForPixel(squareAt, TestView::color));
  EXPECT_TRUE(waitForPixel(above, TestView::color));
  show(60, 1);
  EXPECT_TRUE(waitForPixel(below, TestView::color));
  EXPECT_TRUE(waitForPixel(above, background));
  show(60, 0);
  EXPECT_TRUE(waitForPixel(below, background));
  panel->surface().setContainer({0, 0, 308, 90}, 15);
  EXPECT_TRUE(waitForPixel(squareAt, background)) << "it is cut off";
  panel->surface().setContainer({0, 40, 308, 300}, 15);
  EXPECT_TRUE(waitForPixel(squareAt + QPoint(0, 40), TestView::color));
  panel->surface().setContent(second);
  EXPECT_TRUE(waitForPixel(squareAt + QPoint(0, 40), TestView::color));
  EXPECT_EQ(world.view->item()->parentItem(), nullptr);
}

TEST_P(Panel, StaysAboveOtherWindows) {
  const auto panel = world.makePanel(frame);
  panel->order(WindowOrder::front);
  ASSERT_TRUE(waitForPixel(squareAt, TestView::color));
  for (const bool isManaged : {false, true}) {
    SCOPED_TRACE(isManaged);
    const auto window = world.display.makeWindow({40, 40, 300, 300}, blue, isManaged);
    world.display.raise(window);
    EXPECT_TRUE(waitForPixel({45, 45}, blue));
    EXPECT_TRUE(waitUntil([&] { return world.display.stack().back() == TestDesktop::idOf(); }));
    EXPECT_TRUE(waitForPixel(squareAt, TestView::color));
  }
  // A screen locker keeps what it covers.
  const auto locker = world.display.makeWindow({0, 0, 1000, 700}, green);
  EXPECT_TRUE(waitForPixel(squareAt, green));
  settle();
  EXPECT_EQ(world.display.stack().back(), locker);
}

TEST_P(Panel, HasTheKeysWhileItIsOpenAndGivesThemBack) {
  auto other = world.display.makeWindow({500, 300, 100, 100}, blue, true);
  world.display.setFocus(other);
  ASSERT_TRUE(waitUntil([&] { return world.display.focus() == other; }));
  std::vector<int> keys;
  bool isSwallowing = true;
  const auto monitor =
      world.desktop.inputEvents().monitorLocal(keyDownMask, [&](const InputEvent& event) {
        keys.push_back(event.keyCode);
        return isSwallowing && event.keyCode == escapeKeyCode;
      });
  const auto panel = world.makePanel(frame);
  for (int opening = 0; opening < 2; ++opening) {
    SCOPED_TRACE(opening);
    keys.clear();
    panel->order(WindowOrder::keyAndFront);
    ASSERT_TRUE(waitUntil([&] { return world.display.focus() == TestDesktop::idOf(); }));
    ASSERT_TRUE(waitUntil([] { return QGuiApplication::focusWindow() != nullptr; }));
    QQuickItem* const first = world.view->places[opening];
    EXPECT_TRUE(waitUntil([&] { return first->hasActiveFocus(); }));
    world.display.pressKey(0xff09);  // Tab
    EXPECT_TRUE(waitUntil([&] { return world.view->places[1 - opening]->hasActiveFocus(); }));
    world.display.pressKey(0xff1b);  // Escape
    EXPECT_TRUE(waitUntil([&] { return keys == std::vector{48, escapeKeyCode}; }));
    panel->order(WindowOrder::out);
    EXPECT_TRUE(waitUntil([&] { return world.display.focus() == other; }));
  }
  // A window that was focused before may have gone, one that was focused meanwhile is left alone.
  panel->order(WindowOrder::keyAndFront);
  ASSERT_TRUE(waitUntil([&] { return world.display.focus() == TestDesktop::idOf(); }));
  const auto third = world.display.makeWindow({700, 300, 100, 100}, green, true);
  world.display.setFocus(third);
  ASSERT_TRUE(waitUntil([&] { return world.display.focus() == third; }));
  panel->order(WindowOrder::out);
  settle();
  EXPECT_EQ(world.display.focus(), third);
  panel->order(WindowOrder::keyAndFront);
  ASSERT_TRUE(waitUntil([&] { return world.display.focus() == TestDesktop::idOf(); }));
  world.display.destroy(third);
  panel->order(WindowOrder::out);
  EXPECT_TRUE(waitUntil([&] { return world.display.focus() != TestDesktop::idOf(); }));
}

TEST_P(Panel, LetsClicksThroughWhenItIgnoresThem) {
  const auto behind = world.display.makeWindow({40, 40, 400, 450}, blue);
  world.options.ignoresMouseEvents = true;
  world.options.canBecomeKey = false;
  const auto panel = world.makePanel(frame);
  int seen = 0;
  const auto monitor = world.desktop.inputEvents().monitorGlobal(
      leftMouseDownMask, [&](const InputEvent&) { ++seen; });
  panel->order(WindowOrder::keyAndFront);
  ASSERT_TRUE(waitForPixel(squareAt, TestView::color));
  world.display.click(squareAt);
  EXPECT_TRUE(waitUntil([&] { return seen == 1; }));  // what lies below got it
  EXPECT_NE(world.display.focus(), TestDesktop::idOf());

  panel->setIgnoresMouseEvents(false);
  int taken = 0;
  const auto local = world.desktop.inputEvents().monitorLocal(
      leftMouseDownMask, [&](const InputEvent&) { return ++taken > 0; });
  settle();
  world.display.click(squareAt);
  EXPECT_TRUE(waitUntil([&] { return taken == 1; }));
  panel->setIgnoresMouseEvents(true);
  settle();
  world.display.click(squareAt);
  EXPECT_TRUE(waitUntil([&] { return seen == 2; }));
  EXPECT_EQ(taken, 1);
  EXPECT_TRUE(panel->isOnScreen());
  EXPECT_TRUE(waitForPixel(squareAt, TestView::color));
  world.display.destroy(behind);
}

TEST_P(Panel, ListsItsWindowsByIdentifier) {
  EXPECT_TRUE(world.desktop.application().windows().empty());
  const auto panel = world.makePanel(frame);
  EXPECT_TRUE(world.desktop.application().windows().empty());
  panel->order(WindowOrder::front);
  const auto windows = world.desktop.application().windows();
  ASSERT_EQ(windows.size(), 1U);
  EXPECT_EQ(windows[0].identifier, "panel");
  EXPECT_TRUE(windows[0].isVisible);
  panel->order(WindowOrder::out);
  EXPECT_FALSE(world.desktop.application().windows().at(0).isVisible);
}

}  // namespace

}  // namespace plemora
