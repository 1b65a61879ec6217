#include "adapters/linux/dbus/mixer_adaptor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDBusMetaType>
#include <QRegularExpression>
#include <map>

#include "adapters/linux/dbus/bus_types.h"
#include "dbus/mixer_on_bus.h"
#include "dbus/signal_keeper.h"

namespace plemora {
namespace {

using testing::HasSubstr;
using testing::UnorderedElementsAre;

constexpr char properties[] = "org.freedesktop.DBus.Properties";

class MixerAdaptorTest : public MixerOnBus {
 protected:
  QVariantMap allProperties() {
    return qdbus_cast<QVariantMap>(
        ask(properties, "GetAll", {mixerInterface}).arguments().value(0));
  }
};

TEST_F(MixerAdaptorTest, IntrospectionListsWhatThereIsAndNothingElse) {
  const QString xml =
      ask("org.freedesktop.DBus.Introspectable", "Introspect").arguments().value(0).toString();
  const QString interface = xml.section("<interface name=\"com.quorvane.mixer.Mixer1\">", 1)
                                .section("</interface>", 0, 0);
  ASSERT_FALSE(interface.isEmpty()) << xml.toStdString();

  std::map<std::string, std::string> shown;
  auto found =
      QRegularExpression("<property name=\"(\\w+)\" type=\"([^\"]+)\"").globalMatch(interface);
  while (found.hasNext()) {
    const auto match = found.next();
    shown[match.captured(1).toStdString()] = match.captured(2).toStdString();
  }
  std::map<std::string, std::string> present;
  const QVariantMap values = allProperties();
  for (auto value = values.begin(); value != values.end(); ++value) {
    const bool isRows = value->metaType() == QMetaType::fromType<QDBusArgument>();
    present[value.key().toStdString()] =
        isRows ? value->value<QDBusArgument>().currentSignature().toStdString()
               : QDBusMetaType::typeToSignature(value->metaType());
  }
  EXPECT_EQ(shown, present);

  std::vector<std::string> methods;
  found = QRegularExpression("<method name=\"(\\w+)\"").globalMatch(interface);
  while (found.hasNext()) {
    const QString method = found.next().captured(1);
    methods.push_back(method.toStdString());
    // Nothing takes two dictionaries, so a known method complains of its arguments alone.
    const auto reply = ask(mixerInterface, method, {QVariantMap(), QVariantMap()});
    EXPECT_EQ(reply.errorName().toStdString(), "org.freedesktop.DBus.Error.InvalidArgs");
    EXPECT_THAT(reply.errorMessage().toStdString(), HasSubstr(method.toStdString()));
  }
  EXPECT_THAT(methods,
              UnorderedElementsAre("SetAppVolume", "ToggleAppMute", "SetAppMute", "SetAppOutput",
                                   "SetVolume", "SetMuted", "SetDefaultDevice", "Reload", "Explain",
                                   "WatchLevels", "Activate", "Join", "Quit"));
}

TEST_F(MixerAdaptorTest, AnswersForEachPropertyAlone) {
  const auto reply = ask(properties, "Get", {mixerInterface, "Version"});
  EXPECT_EQ(reply.arguments().value(0).value<QDBusVariant>().variant().toString(), "1.2.3");

  struct Case {
    QString method;
    QVariantList arguments;
    const char* error;
  };
  const Case cases[] = {
      {"Get", {mixerInterface, "Nonsense"}, "org.freedesktop.DBus.Error.UnknownProperty"},
      {"Get", {"com.example.Other", "Version"}, "org.freedesktop.DBus.Error.UnknownInterface"},
      {"GetAll", {"com.example.Other"}, "org.freedesktop.DBus.Error.UnknownInterface"},
      {"Set",
       {mixerInterface, "Muted", QVariant::fromValue(QDBusVariant(true))},
       "org.freedesktop.DBus.Error.PropertyReadOnly"},
      {"Get", {mixerInterface}, "org.freedesktop.DBus.Error.UnknownMethod"},
  };
  for (const Case& expected : cases) {
    EXPECT_EQ(ask(properties, expected.method, expected.arguments).errorName().toStdString(),
              expected.error);
  }
  EXPECT_EQ(ask(mixerInterface, "Nonsense").errorName().toStdString(),
            "org.freedesktop.DBus.Error.UnknownMethod");
}

TEST_F(MixerAdaptorTest, SignalsOnceATurnWhatChanged) {
  SignalKeeper keeper(clientConnection);
  service->setAppVolume("mpv", 0.4);
  service->setAppVolume("mpv", 0.5);
  service->toggleAppMute("org.mozilla.firefox");
  service->setConnected(false);
  ASSERT_TRUE(until([&] { return !keeper.changes.empty(); }));
  EXPECT_EQ(keeper.changes[0].keys(), (QStringList{"Channels", "Connected"}));
  EXPECT_EQ(appsFromBus(keeper.changes[0].value("Channels")), service->state().apps);
  EXPECT_EQ(keeper.changes[0].value("Connected"), false);

  service->setConnected(false);
  service->reload();
  service->setVolume(0.25);
  ASSERT_TRUE(until([&] { return keeper.changes.size() > 1; }));
  EXPECT_EQ(keeper.changes.size(), 2u) << "what stays as it is makes no signal";
  EXPECT_EQ(keeper.changes[1], (QVariantMap{{"Volume", 0.25}}));
}

TEST_F(MixerAdaptorTest, LevelsGoToTheWatchersUntilTheyStop) {
  SignalKeeper watcher(clientConnection);
  SignalKeeper bystander(bus.connection("bystander"));
  const int idle = world.main.pendingTimers();
  ask(mixerInterface, "SetAppVolume", {"mpv", 0.5});
  ask(mixerInterface, "WatchLevels", {true});
  ask(mixerInterface, "WatchLevels", {true});
  EXPECT_EQ(world.main.pendingTimers(), idle + 1);
  world.hal.step(64);
  world.hal.step(64);
  world.pass(MixerService::levelInterval);
  ASSERT_TRUE(until([&] { return !watcher.levels.empty(); }));
  ASSERT_EQ(watcher.levels[0].size(), 1u);
  EXPECT_EQ(watcher.levels[0][0], (LevelReport{"mpv", 0.25, 1, 0.25}));
  EXPECT_EQ(watcher.levels.size(), 1u) << "asking twice does not send twice";
  EXPECT_TRUE(bystander.levels.empty());

  ask(mixerInterface, "WatchLevels", {false});
  EXPECT_EQ(world.main.pendingTimers(), idle);
}

TEST_F(MixerAdaptorTest, AWatcherThatLeavesTheBusEndsItsWatch) {
  const int idle = world.main.pendingTimers();
  const QString leaving = bus.connection("leaving").baseService();
  auto message =
      QDBusMessage::createMethodCall(mixerBusName, mixerObjectPath, mixerInterface, "WatchLevels");
  message << true;
  QDBusConnection("leaving").asyncCall(message);
  ask(mixerInterface, "WatchLevels", {true});
  ASSERT_TRUE(until([&] { return world.main.pendingTimers() == idle + 1; }));
  ask(mixerInterface, "WatchLevels", {false});
  EXPECT_EQ(world.main.pendingTimers(), idle + 1) << "the other one still watches";
  bus.close("leaving");
  EXPECT_TRUE(until([&] { return world.main.pendingTimers() == idle; }));
}

TEST_F(MixerAdaptorTest, HandsOnActivationAndQuit) {
  std::vector<std::string> arguments;
  bool quit = false;
  adaptor->setActivateHandler([&](const auto& given) { arguments = given; });
  adaptor->setQuitHandler([&] { quit = true; });
  ask(mixerInterface, "Activate", {QStringList{"--no-ui", "ä b"}});
  EXPECT_EQ(arguments, (std::vector<std::string>{"--no-ui", "ä b"}));
  EXPECT_FALSE(ask(mixerInterface, "Join", {QStringList{"DISPLAY=:1"}}).arguments().at(0).toBool());
  adaptor->setJoinHandler([&](const auto& given) {
    arguments = given;
    return true;
  });
  EXPECT_TRUE(ask(mixerInterface, "Join", {QStringList{"DISPLAY=:1"}}).arguments().at(0).toBool());
  EXPECT_EQ(arguments, std::vector<std::string>{"DISPLAY=:1"});
  ask(mixerInterface, "Quit");
  EXPECT_TRUE(quit);
}

TEST_F(MixerAdaptorTest, ExplainsAnApp) {
  ask(mixerInterface, "SetAppMute", {"mpv", true});
  const QVariantList reply = ask(mixerInterface, "Explain", {"mpv"}).arguments();
  AudibilityReport expected;
  ASSERT_EQ(service->explain("mpv", expected), std::nullopt);
  EXPECT_EQ(factorsFromBus(reply.value(0)), expected.factors);
  EXPECT_EQ(reply.value(1).toDouble(), 0);
  EXPECT_EQ(reply.value(2).toString().toStdString(), expected.verdict);
}

TEST(BusTypes, AClientUnderstandsRowsOfOtherVersions) {
  const BusRows rows = {{{"id", "a"}, {"volume", "loud"}, {"new", 1}}, {}};
  const auto apps = appsFromBus(QVariant::fromValue(rows));
  ASSERT_EQ(apps.size(), 2u);
  EXPECT_EQ(apps[0], (AppState{.id = "a"}));
  EXPECT_EQ(apps[1], AppState{});
  EXPECT_TRUE(appsFromBus(QVariant("nonsense")).empty());

  MixerState state;
  state.volume = 0.5;
  propertiesFromBus({{"Muted", true}, {"Future", 7}}, state);
  EXPECT_TRUE(state.muted);
  EXPECT_EQ(state.volume, 0.5) << "what is not told stays";
  propertiesFromBus({{"HasVolume", false}, {"Volume", 0.0}}, state);
  EXPECT_EQ(state.volume, std::nullopt);
}

}  // namespace
}  // namespace plemora
