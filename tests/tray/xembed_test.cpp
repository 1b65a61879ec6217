#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QStandardPaths>
#include <memory>
#include <optional>
#include <vector>

#include "adapters/linux/tray/tray_place.h"
#include "adapters/linux/tray/xembed_icon.h"
#include "dbus/private_bus.h"
#include "tray/fake_tray.h"

namespace plemora {
namespace {

using testing::ElementsAre;

constexpr std::uint32_t black = 0x101010;
constexpr std::uint32_t white = 0xf0f0f0;

class XembedTest : public testing::Test {
 protected:
  void SetUp() override {
    if (QStandardPaths::findExecutable("Xvfb").isEmpty()) {
      GTEST_SKIP() << "Xvfb is not installed";
    }
    display = std::make_unique<PrivateDisplay>();
    x11 = display->connect();
    ASSERT_TRUE(x11);
  }

  std::unique_ptr<XembedIcon> makeIcon(TrayShade shade = TrayShade::dark) {
    XembedIcon::Handlers handlers;
    handlers.clicked = [this](StatusButtonEvent event) { clicks.push_back(event); };
    handlers.scrolled = [this](int steps) { scrolled.push_back(steps); };
    handlers.draw = [this](int side, TrayShade drawn) {
      drawnFor = drawn;
      QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
      image.fill(Qt::red);
      return image;
    };
    return std::make_unique<XembedIcon>(*x11, "Plemora", shade, std::move(handlers));
  }

  bool settle(const std::function<bool()>& condition) {
    return runUntil(condition, [] {});
  }
  /// The icon's colour in the middle and in the corner, as the tray shows them.
  bool shows(FakeTray& tray, QRgb middle, QRgb corner) {
    return settle([&] {
      const QImage image = tray.x11().picture(tray.icon(), QRect(0, 0, 22, 22));
      return !image.isNull() && (image.pixel(11, 11) & RGB_MASK) == (middle & RGB_MASK) &&
             (image.pixel(0, 0) & RGB_MASK) == (corner & RGB_MASK);
    });
  }

  std::unique_ptr<PrivateDisplay> display;
  std::unique_ptr<X11Link> x11;
  std::vector<StatusButtonEvent> clicks;
  std::vector<int> scrolled;
  std::optional<TrayShade> drawnFor;
};

TEST_F(XembedTest, IsInWhicheverTrayThereIs) {
  auto icon = makeIcon();
  EXPECT_EQ(icon->frame(), std::nullopt);

  auto tray = std::make_unique<FakeTray>(*display, black);
  ASSERT_TRUE(settle([&] { return icon->frame().has_value(); })) << "the tray came later";
  EXPECT_EQ(icon->frame(), QRect(FakeTray::iconX, 1, 22, 22));
  EXPECT_TRUE(shows(*tray, 0xff0000, black));

  tray.reset();
  ASSERT_TRUE(settle([&] { return !icon->frame().has_value(); }));
  FakeTray next(*display, white);
  ASSERT_TRUE(settle([&] { return icon->frame().has_value(); })) << "after the restart";
  EXPECT_TRUE(shows(next, 0xff0000, white));

  icon.reset();
  icon = makeIcon();
  EXPECT_TRUE(settle([&] { return icon->frame().has_value(); })) << "the tray was there before";
}

TEST_F(XembedTest, IsDrawnForTheTraysColour) {
  struct Case {
    std::uint32_t color;
    bool offersAlpha;
    TrayShade otherwise;
    TrayShade drawn;
  };
  const Case cases[] = {
      {white, false, TrayShade::dark, TrayShade::light},
      {black, false, TrayShade::light, TrayShade::dark},
      // What is behind a transparent icon cannot be seen.
      {white, true, TrayShade::dark, TrayShade::dark},
      {black, true, TrayShade::light, TrayShade::light},
  };
  for (const Case& one : cases) {
    drawnFor.reset();
    FakeTray tray(*display, one.color, one.offersAlpha);
    const auto icon = makeIcon(one.otherwise);
    ASSERT_TRUE(settle([&] { return drawnFor.has_value(); }));
    EXPECT_EQ(*drawnFor, one.drawn) << std::hex << one.color << one.offersAlpha;
    if (one.offersAlpha) {
      EXPECT_TRUE(shows(tray, 0xff0000, 0)) << "the corner is transparent";
      EXPECT_EQ(tray.x11().picture(tray.icon(), QRect(0, 0, 22, 22)).format(),
                QImage::Format_ARGB32_Premultiplied);
    }
  }
}

TEST_F(XembedTest, ReportsButtonsAndTheWheel) {
  FakeTray tray(*display, black);
  const auto icon = makeIcon();
  ASSERT_TRUE(settle([&] { return icon->frame().has_value(); }));
  for (const std::uint8_t button : std::vector<std::uint8_t>{1, 2, 3, 4, 5, 5, 6, 9}) {
    tray.press(button);
  }
  ASSERT_TRUE(settle([&] { return scrolled.size() == 3; }));
  EXPECT_THAT(clicks,
              ElementsAre(StatusButtonEvent::leftMouseDown, StatusButtonEvent::middleMouseDown,
                          StatusButtonEvent::rightMouseDown));
  EXPECT_THAT(scrolled, ElementsAre(1, -1, -1));
}

TEST_F(XembedTest, PlaceOfABusItemFollowsTheClickAndThePanel) {
  TrayPlace place(x11.get());
  EXPECT_EQ(place.frame(), std::nullopt) << "no panel, no click";

  auto tray = std::make_unique<FakeTray>(*display, white);
  ASSERT_TRUE(settle([&] { return place.frame().has_value(); }));
  EXPECT_EQ(place.frame(), QRect(776, 0, 24, 24)) << "the end of the panel";
  ASSERT_TRUE(settle([&] { return place.shade() == TrayShade::light; }));

  tray->movePointer(500, 10);
  place.clicked(QPoint(3, 4));
  EXPECT_EQ(place.frame(), QRect(488, 0, 24, 24)) << "where the pointer is";
  tray->movePointer(796, 10);
  place.clicked(QPoint());
  EXPECT_EQ(place.frame(), QRect(776, 0, 24, 24)) << "not beyond the panel";
  tray->movePointer(400, 300);
  place.clicked(QPoint(600, 12));
  EXPECT_EQ(place.frame(), QRect(588, 0, 24, 24)) << "chosen by a key: as the host says";
  place.clicked(QPoint());
  EXPECT_EQ(place.frame(), QRect(588, 0, 24, 24)) << "a host that says nothing";

  tray.reset();
  ASSERT_TRUE(settle([&] { return !place.shade().has_value(); }));
  EXPECT_EQ(place.frame(), QRect(588, 0, 24, 24)) << "all that is known";
}

TEST(TrayPlaceTest, SquaresLieInsideThePanel) {
  struct Case {
    QRect panel;
    QPoint point;
    QRect square;
  };
  const Case cases[] = {
      {{0, 0, 1920, 32}, {900, 5}, {884, 0, 32, 32}},
      {{0, 1040, 1920, 40}, {10, 1060}, {0, 1040, 40, 40}},
      {{1856, 0, 64, 1080}, {1900, 1070}, {1856, 1016, 64, 64}},
      {{-1920, 0, 1920, 30}, {-2, 15}, {-30, 0, 30, 30}},
      {{100, 100, 30, 30}, {110, 110}, {100, 100, 30, 30}},
  };
  for (const Case& one : cases) {
    EXPECT_EQ(TrayPlace::squareIn(one.panel, one.point), one.square);
  }
}

}  // namespace
}  // namespace plemora
