#include <gtest/gtest.h>

#include <QQuickWindow>

#include "adapters/linux/windows/linux_screens.h"
#include "adapters/linux/windows/quick_windows.h"
#include "adapters/linux/windows/x11_backdrop.h"
#include "adapters/linux/windows/x11_input_events.h"
#include "adapters/linux/windows/x11_panels.h"
#include "windows/test_panel.h"

namespace plemora {

namespace {

constexpr unsigned downs = leftMouseDownMask | rightMouseDownMask;

class Input : public testing::Test {
 protected:
  static constexpr Rect frame{50, 250, 308, 400};
  static constexpr QPoint inside{200, 200};
  static constexpr QPoint outside{700, 300};

  void openPanel() {
    panel = world.makePanel(frame);
    panel->order(WindowOrder::keyAndFront);
    ASSERT_TRUE(waitUntil([&] { return world.display.focus() == TestDesktop::idOf(); }));
  }

  /// Clicks there, and waits until the click has come round to us by the shortest way.
  void clickAndSettle(const QPoint& point, int button = 1) {
    world.display.click(point, button);
    settle();
  }

  TestDesktop world{DisplaySetup{"Managed", true}};
  InputEvents& input = world.desktop.inputEvents();
  std::unique_ptr<PanelWindow> panel;
  std::vector<InputEvent> seen;
  std::function<void(const InputEvent&)> note = [this](const InputEvent& event) {
    seen.push_back(event);
  };
};

TEST_F(Input, GlobalMonitorsHearPressesOutsideOurWindows) {
  openPanel();
  auto monitor = input.monitorGlobal(downs, note);
  clickAndSettle(inside);
  EXPECT_TRUE(seen.empty());
  clickAndSettle(outside);
  ASSERT_EQ(seen.size(), 1U);
  EXPECT_EQ(seen[0].type, InputEventType::leftMouseDown);
  EXPECT_EQ(seen[0].location, (Point{700, 400}));
  EXPECT_EQ(input.pointerLocation(), (Point{700, 400}));
  clickAndSettle(outside, 3);
  ASSERT_EQ(seen.size(), 2U);
  EXPECT_EQ(seen[1].type, InputEventType::rightMouseDown);
  clickAndSettle(outside, 2);
  clickAndSettle(outside, 4);  // the wheel
  EXPECT_EQ(seen.size(), 2U);

  // Over another program's window, and over one of ours that is under another's.
  world.display.makeWindow({150, 150, 100, 100}, 0x0000ff);
  ASSERT_TRUE(waitUntil([&] { return world.display.stack().back() == TestDesktop::idOf(); }));
  clickAndSettle(inside);
  EXPECT_EQ(seen.size(), 2U);
  panel->order(WindowOrder::out);
  clickAndSettle(inside);
  EXPECT_EQ(seen.size(), 3U);

  monitor.reset();
  clickAndSettle(outside);
  EXPECT_EQ(seen.size(), 3U);
}

TEST_F(Input, PressesOnOurPlacesAreOurs) {
  std::vector<Rect> areas{{690, 390, 20, 20}};
  world.desktop.setOwnAreas([&] { return areas; });
  const auto monitor = input.monitorGlobal(downs, note);
  clickAndSettle(outside);
  EXPECT_TRUE(seen.empty());
  clickAndSettle(outside, 3);  // shows a menu that is not ours
  EXPECT_EQ(seen.size(), 1U);
  areas.clear();
  clickAndSettle(outside);
  EXPECT_EQ(seen.size(), 2U);
}

TEST_F(Input, MonitorsMayDropThemselves) {
  openPanel();
  std::unique_ptr<EventMonitor> global;
  std::unique_ptr<EventMonitor> local;
  global = input.monitorGlobal(downs, [&](const InputEvent& event) {
    note(event);
    global.reset();
  });
  local = input.monitorLocal(keyDownMask, [&](const InputEvent& event) {
    note(event);
    local.reset();
    return true;
  });
  for (int round = 0; round < 2; ++round) {
    world.display.pressKey('m');
    settle();
    clickAndSettle(outside);
  }
  ASSERT_EQ(seen.size(), 2U);
  EXPECT_EQ(seen[0].keyCode, 46);
  EXPECT_EQ(seen[1].type, InputEventType::leftMouseDown);
}

TEST_F(Input, LocalMonitorsHearPressesInOurWindowsAndMaySwallowThem) {
  openPanel();
  const auto monitor = input.monitorLocal(downs, [&](const InputEvent& event) {
    note(event);
    return false;
  });
  clickAndSettle(inside);
  ASSERT_EQ(seen.size(), 1U);
  EXPECT_EQ(seen[0].location, (Point{200, 500}));
  clickAndSettle(outside);
  EXPECT_EQ(seen.size(), 1U);
}

TEST(ClosedPanel, HasTheServerReportNothing) {
  QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
  XDisplay display(DisplaySetup{"Bare"});
  XApplication application;
  QtMainQueue queue;
  LinuxScreens screens;
  const auto connection = X11Connection::open();
  X11Panels panels(*connection);
  X11Backdrop backdrop(*connection, [&] { return panels.shown(); });
  X11InputEvents input(*connection);
  QuickWindows windows(queue, screens, backdrop,
                       [&](const PanelWindowOptions& options) { return panels.makeHost(options); });
  const auto panel = windows.makePanel({});
  panel->setFrame({50, 250, 308, 400});
  const auto other = display.makeWindow({100, 100, 200, 200}, 0x0000ff);

  int events = 0;
  const auto observer = connection->observe([&](const auto&) { ++events; });
  const auto eventsWhileOtherIsBusy = [&] {
    settle();
    events = 0;
    for (int i = 0; i < 5; ++i) {
      display.paint(other, {0, 0, 200, 200}, static_cast<unsigned>(i));
      display.move(other, {100 + i, 100});
      display.raise(other);
      display.click({150, 150});
    }
    settle();
    return events;
  };
  EXPECT_EQ(eventsWhileOtherIsBusy(), 0);
  for (int opening = 0; opening < 2; ++opening) {
    panel->order(WindowOrder::keyAndFront);
    auto monitor = input.monitorGlobal(downs, [](const InputEvent&) {});
    EXPECT_GT(eventsWhileOtherIsBusy(), 15);
    monitor.reset();
    panel->order(WindowOrder::out);
    EXPECT_EQ(eventsWhileOtherIsBusy(), 0);
    EXPECT_FALSE(backdrop.isWatching());
  }
}

}  // namespace

}  // namespace plemora
