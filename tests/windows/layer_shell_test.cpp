#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/input-event-codes.h>

#include <QMouseEvent>
#include <QWheelEvent>

#include "windows/sway_display.h"
#include "windows/test_panel.h"
#include "windows/virtual_pointer.h"

namespace plemora {

namespace {

/// The toolkit on the compositor.
class SwayApplication {
 public:
  SwayApplication() {
    qputenv("QT_QPA_PLATFORM", "wayland");
    qunsetenv("QT_SCALE_FACTOR");
    LinuxDesktop::prepare();
    application_ = std::make_unique<QGuiApplication>(count_, arguments_);
  }

 private:
  int count_ = 1;
  std::string name_ = "layer_shell_test";
  char* arguments_[2] = {name_.data(), nullptr};
  std::unique_ptr<QGuiApplication> application_;
};

/// The desktop, and a panel on it like the mixer's: 308x400 points, 20 from the top and the right.
class LayerShell : public testing::TestWithParam<int> {
 protected:
  void SetUp() override {
    if (!display.fault().empty()) {
      GTEST_SKIP() << "No compositor to test on: " << display.fault();
    }
    application = std::make_unique<SwayApplication>();
    queue = std::make_unique<QtMainQueue>();
    desktop = std::make_unique<LinuxDesktop>();
    panels = std::make_unique<LinuxPanels>(*desktop, *queue);
    ASSERT_EQ(desktop->screens().screens().get().size(), 1U);
    screen = desktop->screens().screens().get()[0].frame;
    panel = panels->makePanel({.identifier = "panel", .title = "Plemora"});
    panel->surface().setContent(view);
    panel->setFrame(frame(400));
    pointer = std::make_unique<VirtualPointer>(
        QSize(static_cast<int>(screen.width), static_cast<int>(screen.height)));
  }

  Rect frame(double height) const {
    return {screen.width - 308 - 20, screen.height - 20 - height, 308, height};
  }
  /// In the square in the middle of the content, from the screen's top left corner.
  QPoint square() const { return {static_cast<int>(screen.width) - 328 + 150, 20 + 110}; }

  bool waitForPixel(const QPoint& point, unsigned color) {
    const bool isThere = waitUntil([&] { return display.pixel(point) == color; });
    EXPECT_EQ(display.pixel(point), color);
    return isThere;
  }

  void open() {
    panel->order(WindowOrder::keyAndFront);
    ASSERT_TRUE(waitForPixel(square(), TestView::color));
  }

  SwayDisplay display{GetParam()};
  std::unique_ptr<VirtualPointer> pointer;
  std::unique_ptr<SwayApplication> application;
  std::unique_ptr<QtMainQueue> queue;
  std::unique_ptr<LinuxDesktop> desktop;
  std::unique_ptr<LinuxPanels> panels;
  Rect screen;
  std::shared_ptr<TestView> view = std::make_shared<TestView>();
  std::unique_ptr<PanelWindow> panel;
};

std::string nameOf(const testing::TestParamInfo<int>& info) {
  return "Scale" + std::to_string(info.param);
}

INSTANTIATE_TEST_SUITE_P(At, LayerShell, testing::Values(1, 2), nameOf);

TEST_P(LayerShell, PanelLiesExactlyWhereItIsPut) {
  EXPECT_FALSE(view->isBuilt());
  EXPECT_FALSE(panel->isOnScreen());
  open();
  EXPECT_TRUE(panel->isOnScreen());
  // The square is 20 points wide, 140 and 100 from the content's edges.
  const QPoint corner = square() - QPoint(10, 10);
  const QImage image = display.screenshot();
  const int scale = GetParam();
  const QRect expected(corner * scale, QSize(20, 20) * scale);
  const auto isSquare = [&](const QPoint& at) {
    return (image.pixel(at) & 0xffffff) == TestView::color;
  };
  EXPECT_TRUE(isSquare(expected.topLeft()));
  EXPECT_TRUE(isSquare(expected.bottomRight()));
  EXPECT_FALSE(isSquare(expected.topLeft() - QPoint(1, 0)));
  EXPECT_FALSE(isSquare(expected.topLeft() - QPoint(0, 1)));
  EXPECT_FALSE(isSquare(expected.bottomRight() + QPoint(1, 0)));

  // It moves, and keeps to its top edge while its height changes.
  panel->setFrame(frame(300).offset(-10, -5));
  EXPECT_TRUE(waitForPixel(corner + QPoint(-9, 6), TestView::color));
  EXPECT_TRUE(waitForPixel(corner + QPoint(11, 6), SwayDisplay::background));
  panel->setAlpha(0);
  EXPECT_TRUE(waitForPixel(square(), SwayDisplay::background));
  panel->setAlpha(1);
  panel->setFrame(frame(400));
  EXPECT_TRUE(waitForPixel(square(), TestView::color));

  panel->order(WindowOrder::out);
  EXPECT_FALSE(panel->isOnScreen());
  EXPECT_TRUE(waitForPixel(square(), SwayDisplay::background));
  open();
}

TEST_P(LayerShell, KeysGoToThePanelWhileItIsOpen) {
  std::vector<int> codes;
  const auto monitor =
      desktop->inputEvents().monitorLocal(keyDownMask, [&](const InputEvent& event) {
        codes.push_back(event.keyCode);
        return event.keyCode == escapeKeyCode;
      });
  open();
  display.pressKey("Tab");
  EXPECT_TRUE(waitUntil([&] { return view->places[1]->hasActiveFocus(); }));
  display.pressKey("m");
  display.pressKey("Escape");
  EXPECT_TRUE(waitUntil([&] { return codes.size() == 3; }));
  EXPECT_EQ(codes, (std::vector<int>{48, 46, escapeKeyCode}));
  panel->order(WindowOrder::out);
  display.pressKey("Escape");
  settle();
  EXPECT_EQ(codes.size(), 3U);
}

TEST_P(LayerShell, PressesBesideThePanelReachGlobalMonitorsAlone) {
  std::vector<InputEvent> beside;
  std::vector<InputEvent> inside;
  auto& input = desktop->inputEvents();
  const unsigned downs = leftMouseDownMask | rightMouseDownMask;
  const auto global =
      input.monitorGlobal(downs, [&](const InputEvent& event) { beside.push_back(event); });
  const auto local = input.monitorLocal(downs, [&](const InputEvent& event) {
    inside.push_back(event);
    return false;
  });
  open();
  pointer->click(square(), BTN_LEFT);
  ASSERT_TRUE(waitUntil([&] { return !inside.empty(); }));
  const Point at{double(square().x()), screen.height - square().y()};
  EXPECT_EQ(inside[0].location, at);
  EXPECT_EQ(input.pointerLocation(), at);
  EXPECT_TRUE(beside.empty());

  pointer->click({10, 30}, BTN_LEFT);
  ASSERT_TRUE(waitUntil([&] { return !beside.empty(); }));
  EXPECT_EQ(beside[0].type, InputEventType::leftMouseDown);
  EXPECT_EQ(beside[0].location, (Point{10, screen.height - 30}));
  pointer->click({10, 30}, BTN_RIGHT);
  ASSERT_TRUE(waitUntil([&] { return beside.size() == 2; }));
  EXPECT_EQ(beside[1].type, InputEventType::rightMouseDown);
  EXPECT_EQ(inside.size(), 1U);

  // Closed it takes nothing any more.
  panel->order(WindowOrder::out);
  pointer->click({10, 30}, BTN_LEFT);
  pointer->click(square(), BTN_LEFT);
  settle();
  EXPECT_EQ(beside.size() + inside.size(), 3U);
}

TEST_P(LayerShell, ThePointerReachesTheScene) {
  /// Notes what happens over it, and holds what is pressed there.
  struct Probe : QQuickItem {
    explicit Probe(QQuickItem* parent) : QQuickItem(parent) {
      setSize({308, 400});
      setAcceptedMouseButtons(Qt::LeftButton);
      setAcceptHoverEvents(true);
    }
    void hoverEnterEvent(QHoverEvent* event) override { hover = event->position(); }
    void hoverMoveEvent(QHoverEvent* event) override { hover = event->position(); }
    void hoverLeaveEvent(QHoverEvent*) override { hasLeft = true; }
    void mousePressEvent(QMouseEvent* event) override { pressed = event->position(); }
    void mouseMoveEvent(QMouseEvent* event) override { dragged = event->position(); }
    void mouseReleaseEvent(QMouseEvent* event) override { released = event->position(); }
    void wheelEvent(QWheelEvent* event) override { rolled += event->angleDelta().y(); }
    QPointF hover, pressed, dragged, released;
    int rolled = 0;
    bool hasLeft = false;
  };
  open();
  auto* probe = new Probe(view->item());
  const QPoint origin(static_cast<int>(screen.width) - 328, 20);
  pointer->move(origin + QPoint(30, 300));
  EXPECT_TRUE(waitUntil([&] { return probe->hover == QPointF(30, 300); }));
  pointer->roll(2);
  EXPECT_TRUE(waitUntil([&] { return probe->rolled == -240; }));
  // A drag goes on outside, and ends there; the next one begins anew.
  for (const int y : {200, 250}) {
    pointer->move(origin + QPoint(40, y));
    pointer->press(BTN_LEFT, true);
    pointer->move(origin + QPoint(-50, y));
    EXPECT_TRUE(waitUntil([&] { return probe->dragged == QPointF(-50, y); }));
    EXPECT_EQ(probe->pressed, QPointF(40, y));
    pointer->press(BTN_LEFT, false);
    EXPECT_TRUE(waitUntil([&] { return probe->released == QPointF(-50, y); }));
  }
  EXPECT_TRUE(waitUntil([&] { return probe->hasLeft; }));
}

TEST_P(LayerShell, ClosedPanelHoldsNoConnection) {
  const auto descriptors = [] {
    int count = 0;
    for (int file = 0; file < 256; ++file) {
      count += fcntl(file, F_GETFD) >= 0 ? 1 : 0;
    }
    return count;
  };
  open();
  panel->order(WindowOrder::out);
  settle();
  const int closed = descriptors();
  open();
  EXPECT_GT(descriptors(), closed);
  panel->order(WindowOrder::out);
  settle();
  EXPECT_EQ(descriptors(), closed);
}

}  // namespace

}  // namespace plemora
