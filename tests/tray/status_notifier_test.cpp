#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDBusConnectionInterface>
#include <QDBusObjectPath>
#include <algorithm>

#include "adapters/linux/tray/scroll_steps.h"
#include "tray/tray_on_bus.h"

namespace plemora {
namespace {

using testing::ElementsAre;

constexpr auto left = StatusButtonEvent::leftMouseDown;
constexpr auto right = StatusButtonEvent::rightMouseDown;
constexpr auto middle = StatusButtonEvent::middleMouseDown;

class StatusNotifierTest : public TrayOnBus {};

SymbolImage speaker(double volume) {
  return {"speaker.wave.3.fill", volume, 14, "Sound"};
}

/// How much ink the picture has, 0...1.
double ink(const TrayPixmap& pixmap) {
  double sum = 0;
  for (qsizetype i = 0; i < pixmap.pixels.size(); i += 4) {
    sum += static_cast<unsigned char>(pixmap.pixels[i]) / 255.0;
  }
  return sum / (pixmap.width * pixmap.height);
}

/// The lightest opaque pixel, 0...255.
int lightest(const TrayPixmap& pixmap) {
  int most = 0;
  for (qsizetype i = 0; i < pixmap.pixels.size(); i += 4) {
    if (static_cast<unsigned char>(pixmap.pixels[i]) == 255) {
      most = std::max<int>(most, static_cast<unsigned char>(pixmap.pixels[i + 1]));
    }
  }
  return most;
}

TEST_F(StatusNotifierTest, RegistersWithEveryWatcherThatComes) {
  makeItem();
  auto watcher = std::make_unique<FakeWatcher>(hostBus);
  ASSERT_TRUE(registered(*watcher, 1));
  const QString name = watcher->items.value(0);
  EXPECT_TRUE(name.startsWith("org.kde.StatusNotifierItem-")) << name.toStdString();

  watcher.reset();
  watcher = std::make_unique<FakeWatcher>(hostBus);
  EXPECT_TRUE(registered(*watcher, 1)) << "not after the restart";

  item.reset();
  EXPECT_FALSE(hostBus.interface()->isServiceRegistered(name)) << "the tray would keep it";
}

TEST_F(StatusNotifierTest, HasAFrameOnlyWhileAHostShowsIt) {
  FakeWatcher watcher(hostBus, false);
  makeItem();
  ASSERT_TRUE(registered(watcher, 1));
  askItem("Activate", {100, 10});
  EXPECT_EQ(item->frame(), std::nullopt) << "no host draws it";
  watcher.setHost(true);
  // The offscreen screen is 800 x 800; a square of 24 around the pointer, y up.
  ASSERT_TRUE(settle([&] { return item->frame().has_value(); }));
  EXPECT_EQ(item->frame(), (Rect{88, 778, 24, 24}));
  watcher.setHost(false);
  EXPECT_TRUE(settle([&] { return !item->frame().has_value(); }));
}

TEST_F(StatusNotifierTest, TellsOfTheWatcherThatRefusesOrDoesNotKnow) {
  FakeWatcher watcher(hostBus);
  watcher.refusesItems = true;
  makeItem();
  askItem("Activate", {100, 10});
  settle([&] { return !clicks.empty(); });
  EXPECT_EQ(item->frame(), std::nullopt);

  item.reset();
  watcher.refusesItems = false;
  watcher.knowsItsHosts = false;
  makeItem();
  askItem("Activate", {100, 10});
  EXPECT_TRUE(settle([&] { return item->frame().has_value(); })) << "taken for a host";
}

TEST_F(StatusNotifierTest, ReportsClicksAndSteps) {
  makeItem();
  askItem("Activate", {5, 6});
  askItem("SecondaryActivate", {5, 6});
  askItem("ContextMenu", {5, 6});
  ASSERT_TRUE(settle([&] { return clicks.size() == 3; }));
  EXPECT_THAT(clicks, ElementsAre(left, middle, right));

  askItem("Scroll", {120, "vertical"});
  askItem("Scroll", {-240, "Vertical"});
  askItem("Scroll", {120, "horizontal"});
  askItem("Scroll", {60, "vertical"});
  askItem("Scroll", {60, "vertical"});
  ASSERT_TRUE(settle([&] { return scrolled.size() == 3; }));
  EXPECT_THAT(scrolled, ElementsAre(1, -2, 1));
}

TEST(ScrollStepsTest, MakesNotchesOfPieces) {
  struct Case {
    const char* what;
    std::vector<int> distances;
    std::vector<int> steps;
  };
  const Case cases[] = {
      {"notches", {120, 120, -120}, {1, 1, -1}},
      {"several at once", {360, -240}, {3, -2}},
      {"pieces of a fine wheel", {30, 30, 30, 30, 30}, {0, 0, 0, 1, 0}},
      {"what is left over counts on", {100, 100, 100}, {0, 1, 1}},
      {"another direction starts anew", {110, -60, -60}, {0, 0, -1}},
      {"hosts that count notches", {1, 1, -1}, {1, 1, -1}},
      {"nothing", {0, 0}, {0, 0}},
      {"nonsense stays in range", {INT_MAX, INT_MIN}, {1000, -1000}},
  };
  for (const Case& one : cases) {
    ScrollSteps steps;
    std::vector<int> made;
    for (const int distance : one.distances) {
      made.push_back(steps.add(distance));
    }
    EXPECT_EQ(made, one.steps) << one.what;
  }
}

TEST_F(StatusNotifierTest, ShowsTheSymbolInAllSizes) {
  makeItem();
  item->setImage(speaker(1));
  const auto full = pixmaps();
  std::vector<int> sizes;
  for (const TrayPixmap& pixmap : full) {
    sizes.push_back(pixmap.width);
    EXPECT_EQ(pixmap.height, pixmap.width);
    ASSERT_EQ(pixmap.pixels.size(), pixmap.width * pixmap.height * 4);
    EXPECT_GT(ink(pixmap), 0.05) << pixmap.width;
    EXPECT_LT(ink(pixmap), 0.8) << pixmap.width;
  }
  EXPECT_THAT(sizes, ElementsAre(16, 22, 24, 32, 48));

  item->setImage(speaker(0.5));
  const auto half = pixmaps();
  item->setImage({"speaker.slash.fill", {}, 14, "Sound muted"});
  const auto muted = pixmaps();
  EXPECT_LT(ink(half.at(4)), ink(full.at(4))) << "the waves do not follow the volume";
  EXPECT_NE(muted.at(4).pixels, half.at(4).pixels);
  EXPECT_NE(muted.at(4).pixels, full.at(4).pixels);
}

TEST_F(StatusNotifierTest, StandsOutFromDarkAndLightTrays) {
  makeItem();
  item->setImage(speaker(1));
  EXPECT_GT(lightest(pixmaps().at(4)), 200);
  appearance.setDark(false);
  EXPECT_LT(lightest(pixmaps().at(4)), 80);
  appearance.setDark(true);
  EXPECT_GT(lightest(pixmaps().at(4)), 200);
}

TEST_F(StatusNotifierTest, DescribesItself) {
  makeItem();
  struct Case {
    SymbolImage image;
    QString text;
  };
  const Case cases[] = {{speaker(0.842), "Sound, 84 %"},
                        {speaker(1), "Sound, 100 %"},
                        {{"speaker.slash.fill", {}, 14, "Sound muted"}, "Sound muted"},
                        {{"speaker.slash.fill", {}, 14, ""}, "Sound"}};
  for (const Case& one : cases) {
    item->setImage(one.image);
    const auto tip = qdbus_cast<TrayToolTip>(property("ToolTip"));
    EXPECT_EQ(tip.title, "Plemora");
    EXPECT_EQ(tip.text.toStdString(), one.text.toStdString());
  }
  EXPECT_EQ(property("Title"), "Plemora");
  EXPECT_EQ(property("Status"), "Active");
  EXPECT_EQ(property("ItemIsMenu"), false);
  EXPECT_EQ(property("Menu").value<QDBusObjectPath>().path(), "/MenuBar");
}

TEST_F(StatusNotifierTest, AnswersWhatDoesNotFitWithErrors) {
  makeItem();
  struct Case {
    QString interface;
    QString method;
    QVariantList arguments;
    QString error;
  };
  const QString notifier = "org.kde.StatusNotifierItem";
  const QString properties = "org.freedesktop.DBus.Properties";
  const QString error = "org.freedesktop.DBus.Error.";
  const Case cases[] = {
      {notifier, "Activate", {"here"}, error + "InvalidArgs"},
      {notifier, "Scroll", {120}, error + "InvalidArgs"},
      {notifier, "Explode", {}, error + "UnknownMethod"},
      {properties, "Get", {notifier, "Colour"}, error + "UnknownProperty"},
      {properties,
       "Set",
       {notifier, "Title", QVariant::fromValue(QDBusVariant(1))},
       error + "PropertyReadOnly"},
      {properties, "Get", {notifier}, error + "UnknownMethod"},
  };
  for (const Case& one : cases) {
    const auto reply = ask("/StatusNotifierItem", one.interface, one.method, one.arguments);
    EXPECT_EQ(reply.errorName().toStdString(), one.error.toStdString()) << one.method.toStdString();
  }
  EXPECT_TRUE(clicks.empty());
}

}  // namespace
}  // namespace plemora
