#include <gtest/gtest.h>

#include <QElapsedTimer>

#include "adapters/linux/windows/x11_backdrop.h"
#include "windows/test_panel.h"

namespace plemora {

namespace {

constexpr unsigned background = 0x305070;
constexpr unsigned blue = 0x0000ff;
constexpr unsigned green = 0x00ff00;
constexpr unsigned red = 0xff0000;

class Backdrop : public testing::TestWithParam<DisplaySetup> {
 protected:
  /// A pixel of the area, by its place on the screen.
  unsigned captured(const QPoint& at) {
    const BackdropImage image = source.capture(area);
    EXPECT_EQ(image.width, 400);
    EXPECT_EQ(image.height, 300);
    EXPECT_EQ(image.scale, 1);
    const auto index = static_cast<std::size_t>((at.y() - 100) * image.width + at.x() - 100);
    return index < image.pixels.size() ? image.pixels[index] : 0;
  }
  void expectCaptured(const QPoint& at, unsigned color) {
    EXPECT_EQ(captured(at), 0xff000000U | color) << std::hex << captured(at);
  }

  XDisplay display{GetParam()};
  XApplication application;
  std::unique_ptr<X11Connection> connection = X11Connection::open();
  std::vector<xcb_window_t> panels;
  X11Backdrop source{*connection, [this] { return panels; }};
  /// From 100, 100 to 500, 400 of the screen.
  static constexpr Rect area{100, 300, 400, 300};
};

INSTANTIATE_TEST_SUITE_P(On, Backdrop,
                         testing::Values(DisplaySetup{"Bare"}, DisplaySetup{"Managed", true},
                                         DisplaySetup{"Composited", true, true},
                                         DisplaySetup{"PlainRoot", false, false, std::nullopt}),
                         [](const auto& display) { return display.param.name; });

TEST_P(Backdrop, IsWhatLiesBelowThePanel) {
  ASSERT_EQ(source.kind(), BackdropSource::Kind::pixels);
  const unsigned root = display.pixel({450, 380});
  const auto low = display.makeWindow({50, 50, 200, 200}, blue);
  const auto shaped = display.makeWindow({200, 200, 200, 150}, red);
  display.cutShape(shaped, {50, 50, 150, 100});
  const auto panel = display.makeWindow({100, 100, 400, 300}, 0xffffff);
  display.makeWindow({300, 100, 100, 100}, 0xffff00);  // above the panel
  panels = {panel};
  for (const bool isObserved : {false, true}) {
    SCOPED_TRACE(isObserved);
    const auto observer = isObserved ? source.observe([] {}) : Subscription();
    expectCaptured({100, 100}, blue);
    expectCaptured({249, 249}, blue);
    expectCaptured({399, 349}, red);
    expectCaptured({250, 250}, red);
    if (isObserved || GetParam().background) {
      // (A plain root window keeps nothing of its own under what has covered it.)
      expectCaptured({249, 251}, GetParam().background ? root : captured({249, 251}) & 0xffffffU);
    }
    if (isObserved) {  // hidden by the panel all the time, and seen all the same
      display.paint(low, {0, 0, 200, 200}, green);
      expectCaptured({120, 120}, green);
    }
  }
  EXPECT_TRUE(source.capture({0, 0, 0, 10}).isEmpty());
}

TEST_P(Backdrop, TellsOfChangesInTheAreaOnly) {
  const auto inside = display.makeWindow({50, 50, 200, 200}, blue);
  const auto elsewhere = display.makeWindow({600, 50, 100, 100}, blue);
  const auto panel = display.makeWindow({100, 100, 400, 300}, 0xffffff);
  panels = {panel};
  settle();
  EXPECT_FALSE(source.isWatching());
  int changes = 0;
  auto observer = source.observe([&] {
    ++changes;
    source.capture(area);
  });
  EXPECT_TRUE(source.isWatching());
  source.capture(area);
  // Managers that have just started still arrange themselves.
  EXPECT_TRUE(waitUntil([&] {
    changes = 0;
    settle();
    return changes == 0;
  }));
  const auto expectChange = [&](bool isExpected) {
    if (isExpected) {
      EXPECT_TRUE(waitUntil([&] { return changes > 0; }));
    }
    settle();
    EXPECT_EQ(changes > 0, isExpected);
    changes = 0;
  };
  expectChange(false);
  display.paint(inside, {100, 100, 10, 10}, green);
  expectChange(true);
  display.paint(inside, {0, 0, 10, 10}, green);  // of it, what is beside the area
  expectChange(false);
  display.paint(inside, {150, 150, 10, 10}, red);
  expectChange(true);
  display.paint(elsewhere, {0, 0, 100, 100}, green);
  display.paint(panel, {0, 0, 100, 100}, green);
  expectChange(false);
  display.move(elsewhere, {450, 300});
  expectChange(true);
  expectCaptured({480, 350}, green);
  display.destroy(elsewhere);
  expectChange(true);

  // A film behind it: 30 pictures a second and no more.
  QElapsedTimer timer;
  timer.start();
  waitUntil([&] {
    display.paint(inside, {60, 60, 100, 100}, static_cast<unsigned>(timer.elapsed()));
    return timer.hasExpired(300);
  });
  EXPECT_GE(changes, 3);
  EXPECT_LE(changes, 10);

  observer = {};
  EXPECT_FALSE(source.isWatching());
  changes = 0;
  display.paint(inside, {60, 60, 100, 100}, green);
  settle();
  EXPECT_EQ(changes, 0);
}

}  // namespace

}  // namespace plemora
