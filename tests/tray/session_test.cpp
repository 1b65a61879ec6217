#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <vector>

#include "adapters/linux/desktop/desktop_notifier.h"
#include "adapters/linux/desktop/portal_appearance.h"
#include "dbus/private_bus.h"

namespace plemora {
namespace {

using testing::ElementsAre;

constexpr char appearanceGroup[] = "org.freedesktop.appearance";

QVariant variant(const QVariant& value) {
  return QVariant::fromValue(QDBusVariant(value));
}

/// The desktop's services for sandboxed and other programs, as far as they are used here.
class FakePortal : public QDBusVirtualObject {
 public:
  explicit FakePortal(QDBusConnection bus) : bus_(std::move(bus)) {
    bus_.registerVirtualObject(path, this);
    bus_.registerService("org.freedesktop.portal.Desktop");
  }

  // Invalid: unknown to this portal.
  QVariant scheme;
  QVariant motion;
  QVariant animations;
  int asked = 0;  ///< for the scheme
  int answers = 0;

  void change(const QString& group, const QString& key, const QVariant& value) {
    auto signal =
        QDBusMessage::createSignal(path, "org.freedesktop.portal.Settings", "SettingChanged");
    signal << group << key << variant(value);
    bus_.send(signal);
  }

  QString introspect(const QString&) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
    ++answers;
    const QString key = message.arguments().at(1).toString();
    asked += key == "color-scheme" ? 1 : 0;
    const QVariant& value = key == "color-scheme"     ? scheme
                            : key == "reduced-motion" ? motion
                                                      : animations;
    return connection.send(value.isValid()
                               ? message.createReply(variant(value))
                               : message.createErrorReply(QDBusError::Failed, "not found"));
  }

 private:
  static constexpr char path[] = "/org/freedesktop/portal/desktop";
  QDBusConnection bus_;
};

/// The notification service; keeps what it is told to show.
class FakeNotifications : public QDBusVirtualObject {
 public:
  explicit FakeNotifications(QDBusConnection bus) {
    bus.registerVirtualObject("/org/freedesktop/Notifications", this);
    bus.registerService("org.freedesktop.Notifications");
  }

  std::vector<QVariantList> shown;

  QString introspect(const QString&) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
    EXPECT_EQ(message.signature(), "susssasa{sv}i");
    shown.push_back(message.arguments());
    return connection.send(message.createReply(70u + static_cast<unsigned>(shown.size())));
  }
};

class SessionTest : public testing::Test {
 protected:
  bool settle(const std::function<bool()>& condition) {
    return runUntil(condition, [] {});
  }

  PrivateBus bus;
  QDBusConnection services = bus.connection("services");
  QDBusConnection ours = bus.connection("ours");
};

TEST_F(SessionTest, AppearanceIsDarkOnlyWhereTheUserPrefersDark) {
  struct Case {
    const char* what;
    QVariant scheme;
    bool isDark;
  };
  const Case cases[] = {
      {"no preference", 0u, false},
      {"dark", 1u, true},
      {"light", 2u, false},
      {"a value of the future", 3u, false},
      {"wrapped once more", variant(1u), true},
      {"no number", "dark", false},
      {"unknown to the portal", {}, false},
  };
  FakePortal portal(services);
  for (const Case& one : cases) {
    portal.scheme = one.scheme;
    portal.asked = 0;
    PortalAppearance appearance(ours);
    std::vector<bool> told;
    const auto subscription = appearance.observe([&](bool isDark) { told.push_back(isDark); });
    ASSERT_TRUE(settle([&] { return portal.asked == 1; })) << one.what;
    // The bus keeps the order: this change arrives after the answer.
    portal.change(appearanceGroup, "color-scheme", one.isDark ? 2u : 1u);
    const std::vector<bool> expected =
        one.isDark ? std::vector<bool>{true, false} : std::vector<bool>{true};
    settle([&] { return told.size() == expected.size(); });
    EXPECT_EQ(told, expected) << one.what;
  }
}

TEST_F(SessionTest, AppearanceFollowsItsOwnSettingAlone) {
  FakePortal portal(services);
  portal.scheme = 0u;
  PortalAppearance appearance(ours);
  ASSERT_TRUE(settle([&] { return portal.asked == 1; }));
  std::vector<bool> told;
  const auto subscription = appearance.observe([&](bool isDark) { told.push_back(isDark); });
  portal.change(appearanceGroup, "accent-color", 1u);
  portal.change("org.gnome.desktop.interface", "color-scheme", 1u);
  portal.change(appearanceGroup, "color-scheme", 1u);
  portal.change(appearanceGroup, "color-scheme", 1u);
  portal.change(appearanceGroup, "color-scheme", "nonsense");
  portal.change(appearanceGroup, "color-scheme", 0u);
  ASSERT_TRUE(settle([&] { return told.size() == 2; }));
  EXPECT_THAT(told, ElementsAre(true, false));
}

TEST_F(SessionTest, MotionIsReducedByThePortalElseByTheAnimations) {
  struct Case {
    QVariant motion;
    QVariant animations;
    bool isReduced;
  };
  FakePortal portal(services);
  for (const Case& one : {Case{{}, {}, false}, Case{1u, {}, true}, Case{0u, false, false},
                          Case{1u, true, true}, Case{{}, false, true}, Case{{}, true, false}}) {
    portal.motion = one.motion;
    portal.animations = one.animations;
    portal.answers = 0;
    PortalAppearance appearance(ours);
    ASSERT_TRUE(settle([&] { return portal.answers == 3; }));
    // The bus keeps the order: this change arrives after the answers.
    portal.change(appearanceGroup, "color-scheme", 1u);
    ASSERT_TRUE(settle([&] { return appearance.isDark(); }));
    EXPECT_EQ(appearance.reducesMotion(), one.isReduced)
        << one.motion.isValid() << one.animations.isValid();
    portal.change(appearanceGroup, "reduced-motion", one.isReduced ? 0u : 1u);
    EXPECT_TRUE(settle([&] { return appearance.reducesMotion() != one.isReduced; }));
  }
}

TEST_F(SessionTest, WithoutAPortalTheThemeDecides) {
  struct Case {
    const char* theme;
    bool isDark;
  };
  for (const Case& one : {Case{"Adwaita:dark", true}, Case{"Breeze-Dark", true},
                          Case{"Adwaita", false}, Case{"darkness", false}, Case{"", false}}) {
    qputenv("GTK_THEME", one.theme);
    EXPECT_EQ(PortalAppearance(ours).isDark(), one.isDark) << one.theme;
    EXPECT_EQ(PortalAppearance(QDBusConnection("none")).isDark(), one.isDark) << one.theme;
  }
  qunsetenv("GTK_THEME");
}

TEST_F(SessionTest, AMessageTakesThePlaceOfTheOneBefore) {
  FakeNotifications notifications(services);
  DesktopNotifier notifier(ours);
  notifier.show("Plemora 1.0", "a < b & \"c\"");
  ASSERT_TRUE(settle([&] { return notifications.shown.size() == 1; }));
  // Once the answer is here, its number is used.
  ASSERT_TRUE(settle([&] {
    notifier.show("Plemora 1.0", "again");
    return settle([&] { return notifications.shown.size() > 1; }) &&
           notifications.shown.back().at(1).toUInt() > 70;
  }));
  const QVariantList first = notifications.shown.front();
  EXPECT_EQ(first.at(0), "Plemora");
  EXPECT_EQ(first.at(1).toUInt(), 0u);
  EXPECT_EQ(first.at(2), "com.quorvane.mixer");
  EXPECT_EQ(first.at(3), "Plemora 1.0");
  EXPECT_EQ(first.at(4).toString(), "a &lt; b &amp; \"c\"");

  DesktopNotifier(QDBusConnection("none")).show("nobody", "is there");
}

}  // namespace
}  // namespace plemora
