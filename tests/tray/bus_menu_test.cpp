#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tray/tray_on_bus.h"

namespace plemora {
namespace {

using testing::ElementsAre;

class BusMenuTest : public TrayOnBus {
 protected:
  void SetUp() override {
    qunsetenv("XDG_CURRENT_DESKTOP");
    menu = {{"Open Plemora", [this] { chosen.push_back("open"); }, {}},
            {"Set Up Plemora…", [this] { chosen.push_back("set up"); }, {}},
            {},
            {"Check_for Updates", [this] { chosen.push_back("updates"); }, {}},
            {"Quit Plemora", [this] { chosen.push_back("quit"); }, "q"}};
  }
  void TearDown() override { qunsetenv("XDG_CURRENT_DESKTOP"); }

  QDBusMessage askMenu(const QString& method, const QVariantList& arguments) {
    return ask("/MenuBar", "com.canonical.dbusmenu", method, arguments);
  }

  struct Layout {
    uint revision = 0;
    QList<MenuLayout> items;
  };
  Layout layout(int depth = -1) {
    const auto reply = askMenu("GetLayout", {0, depth, QStringList()});
    Layout found{reply.arguments().value(0).toUInt(), {}};
    for (const QDBusVariant& child : qdbus_cast<MenuLayout>(reply.arguments().value(1)).children) {
      found.items << qdbus_cast<MenuLayout>(child.variant());
    }
    return found;
  }
  std::vector<std::string> labels() {
    std::vector<std::string> found;
    for (const MenuLayout& row : layout().items) {
      found.push_back(row.properties.value("type") == "separator"
                          ? "-"
                          : row.properties.value("label").toString().toStdString());
    }
    return found;
  }
  void click(int id) {
    askMenu("Event", {id, "clicked", QVariant::fromValue(QDBusVariant(0)), 0u});
  }
  bool aboutToShow() { return askMenu("AboutToShow", {0}).arguments().value(0).toBool(); }

  std::vector<std::string> chosen;
};

TEST_F(BusMenuTest, ListsTheItemsAndRunsTheirActions) {
  makeItem();
  EXPECT_THAT(labels(), ElementsAre("Set Up Plemora…", "-", "Check__for Updates", "Quit Plemora"));
  const Layout shown = layout();
  const auto keys = qdbus_cast<QList<QStringList>>(shown.items.at(3).properties.value("shortcut"));
  EXPECT_EQ(keys, QList<QStringList>{QStringList({"Control", "q"})});
  EXPECT_TRUE(layout(0).items.isEmpty()) << "only the root was asked for";

  click(shown.items.at(3).id);
  click(shown.items.at(1).id);  // the separator
  click(4711);
  click(shown.items.at(0).id);
  ASSERT_TRUE(settle([&] { return chosen.size() == 2; }));
  EXPECT_THAT(chosen, ElementsAre("quit", "set up"));

  const QVariantList events = {
      QVariant::fromValue(QList<MenuEvent>{{shown.items.at(2).id, "clicked", QDBusVariant(0), 0},
                                           {4711, "clicked", QDBusVariant(0), 0},
                                           {shown.items.at(0).id, "hovered", QDBusVariant(0), 0}})};
  const auto unknown = qdbus_cast<QList<int>>(askMenu("EventGroup", events).arguments().value(0));
  EXPECT_EQ(unknown, QList<int>{4711});
  ASSERT_TRUE(settle([&] { return chosen.size() == 3; }));
  EXPECT_EQ(chosen.back(), "updates");
}

TEST_F(BusMenuTest, AsksForItemsWhenItIsShownAndKeepsNoOldOnesAlive) {
  makeItem();
  const Layout before = layout();
  const int asked = menusAsked;
  EXPECT_FALSE(aboutToShow()) << "nothing has changed";
  EXPECT_EQ(menusAsked, asked + 1);
  EXPECT_EQ(layout().revision, before.revision);

  menu.insert(
      menu.begin() + 2,
      {"Put Apple's Sound Back in Control Center", [this] { chosen.push_back("restore"); }, {}});
  EXPECT_TRUE(aboutToShow());
  const Layout after = layout();
  EXPECT_GT(after.revision, before.revision);
  ASSERT_EQ(after.items.size(), 5);

  click(before.items.at(1).id);
  click(after.items.at(1).id);
  ASSERT_TRUE(settle([&] { return !chosen.empty(); }));
  EXPECT_THAT(chosen, ElementsAre("restore")) << "a late click on an old item did something";

  const auto changed = askMenu("AboutToShowGroup", {QVariant::fromValue(QList<int>{0, 4711})});
  EXPECT_EQ(qdbus_cast<QList<int>>(changed.arguments().value(0)), QList<int>());
  EXPECT_EQ(qdbus_cast<QList<int>>(changed.arguments().value(1)), QList<int>{4711});
}

TEST_F(BusMenuTest, GivesTheChosenPropertiesOfGroups) {
  makeItem();
  const Layout shown = layout();
  const auto reply =
      askMenu("GetGroupProperties",
              {QVariant::fromValue(QList<int>{shown.items.at(0).id, 4711}), QStringList{"label"}});
  const auto group = qdbus_cast<QList<MenuItemProperties>>(reply.arguments().value(0));
  ASSERT_EQ(group.size(), 1);
  EXPECT_EQ(group.at(0).properties, (QVariantMap{{"label", "Set Up Plemora…"}}));
  const auto all =
      askMenu("GetGroupProperties", {QVariant::fromValue(QList<int>()), QStringList()});
  EXPECT_EQ(qdbus_cast<QList<MenuItemProperties>>(all.arguments().value(0)).size(), 5);
}

TEST_F(BusMenuTest, OpensTheMixerFirstWhereALeftClickShowsTheMenu) {
  for (const char* desktop : {"GNOME", "ubuntu:GNOME", "Unity"}) {
    qputenv("XDG_CURRENT_DESKTOP", desktop);
    makeItem();
    EXPECT_THAT(labels(), ElementsAre("Open Plemora", "Set Up Plemora…", "-", "Check__for Updates",
                                      "Quit Plemora"))
        << desktop;
    chosen.clear();
    click(layout().items.at(0).id);
    ASSERT_TRUE(settle([&] { return !chosen.empty(); }));
    EXPECT_THAT(chosen, ElementsAre("open")) << desktop;
    item.reset();
  }
}

}  // namespace
}  // namespace plemora
