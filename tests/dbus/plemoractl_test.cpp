#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>

#include <nlohmann/json.hpp>

#include "dbus/mixer_on_bus.h"

namespace plemora {
namespace {

using testing::AllOf;
using testing::HasSubstr;

class PlemoractlTest : public MixerOnBus {
 protected:
  AppChannel app(const std::string& id) { return world.row(id).value(); }
  double volume(const std::string& id) {
    for (const AppState& state : service->state().apps) {
      if (state.id == id) {
        return state.volume;
      }
    }
    return -1;
  }
};

TEST_F(PlemoractlTest, ListsAppsAndDevices) {
  const Outcome list = ctl({"list"});
  EXPECT_EQ(list.status, 0) << list.err;
  EXPECT_EQ(list.out,
            "APP               PLAYING  VOLUME  MUTE  OUTPUT   ID\n"
            "Firefox           yes        100%  -     default  org.mozilla.firefox\n"
            "mpv Media Player  yes        100%  -     default  mpv\n"
            "Player            yes        100%  -     default  com.example.two\n");
  const auto apps = nlohmann::json::parse(ctl({"list", "--json"}).out);
  EXPECT_EQ(apps.size(), 3u);
  EXPECT_EQ(apps[1]["id"], "mpv");
  EXPECT_EQ(ctl({"devices", "--ids"}).out, "speakers\nusb\nheadset\n");
  EXPECT_EQ(nlohmann::json::parse(ctl({"devices", "--json"}).out)[1]["name"], "Desk");
}

TEST_F(PlemoractlTest, ChangesWhatItIsToldTo) {
  struct Case {
    QStringList arguments;
    std::function<bool()> isDone;
  };
  const Case cases[] = {
      {{"volume", "firefox", "40%"}, [&] { return volume("org.mozilla.firefox") == 0.4; }},
      {{"volume", "FIRE", "+5%"}, [&] { return volume("org.mozilla.firefox") == 0.45; }},
      {{"volume", "fire", "-50%"}, [&] { return volume("org.mozilla.firefox") == 0; }},
      {{"volume", "fire", "0.7"}, [&] { return volume("org.mozilla.firefox") == 0.7; }},
      {{"mute", "mpv"}, [&] { return app("mpv").isMuted; }},
      {{"mute", "mpv"}, [&] { return app("mpv").isMuted; }},
      {{"unmute", "mpv"}, [&] { return !app("mpv").isMuted; }},
      {{"toggle", "mpv"}, [&] { return app("mpv").isMuted; }},
      {{"output", "mpv", "desk"},
       [&] { return app("mpv").outputUID == "usb" && app("mpv").isRouted; }},
      {{"output", "mpv", "default"}, [&] { return !app("mpv").outputUID; }},
      {{"master", "60%"}, [&] { return service->state().volume == 0.6; }},
      {{"master", "-10%"}, [&] { return service->state().volume == 0.5; }},
      {{"master", "mute"}, [&] { return service->state().muted; }},
      {{"master", "unmute"}, [&] { return !service->state().muted; }},
      {{"default-output", "headset"}, [&] { return service->state().defaultDevice == "headset"; }},
  };
  for (const Case& step : cases) {
    const Outcome outcome = ctl(step.arguments);
    const std::string words = step.arguments.join(' ').toStdString();
    EXPECT_EQ(outcome.status, 0) << words << ": " << outcome.err;
    EXPECT_EQ(outcome.out + outcome.err, "") << words;
    EXPECT_TRUE(until(step.isDone)) << words;
  }
  EXPECT_EQ(ctl({"master"}).out, "100%  (Headset)\n");
}

TEST_F(PlemoractlTest, EachKindOfFailureHasItsStatusAndMessage) {
  struct Case {
    QStringList arguments;
    int status;
    const char* message;
  };
  const Case cases[] = {
      {{}, 2, "say what to do"},
      {{"volume", "mpv", "loud"}, 2, "\"loud\" is not a volume"},
      {{"mute", "vlc"}, 2, "no app is called \"vlc\""},
      {{"output", "mpv", "hdmi"}, 2, "no device is called \"hdmi\""},
      {{"default-output", ""}, 2, "no device is called \"\""},
  };
  for (const Case& expected : cases) {
    const Outcome outcome = ctl(expected.arguments);
    EXPECT_EQ(outcome.status, expected.status) << expected.message;
    EXPECT_THAT(outcome.err, HasSubstr("plemoractl: "));
    EXPECT_THAT(outcome.err, HasSubstr(expected.message));
    EXPECT_EQ(outcome.out, "");
  }

  world.hal.updateDevice(world.speakers, [](SimulatedDevice& device) { device.volume.reset(); });
  ASSERT_TRUE(until([&] { return !service->state().volume; }));
  const Outcome refused = ctl({"master", "40%"});
  EXPECT_EQ(refused.status, 1);
  EXPECT_THAT(refused.err, AllOf(HasSubstr("\"Speakers\""), HasSubstr("no volume")));

  service->setConnected(false);
  const Outcome noServer = ctl({"list"});
  EXPECT_EQ(noServer.status, 4);
  EXPECT_THAT(noServer.err, HasSubstr("no sound server"));
  service->setConnected(true);

  mixerConnection.unregisterService(mixerBusName);
  const Outcome notRunning = ctl({"list"});
  EXPECT_EQ(notRunning.status, 3);
  EXPECT_THAT(notRunning.err, HasSubstr("plemora is not running; start it with"));

  auto environment = bus.environment();
  environment.insert("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + bus.path("nothing"));
  const Outcome noBus = ctl({"list"}, environment);
  EXPECT_EQ(noBus.status, 5);
  EXPECT_THAT(noBus.err, HasSubstr("no session bus"));
}

TEST_F(PlemoractlTest, HelpAndVersionNeedNoBus) {
  auto environment = bus.environment();
  environment.insert("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + bus.path("nothing"));
  EXPECT_THAT(ctl({"--help"}, environment).out, HasSubstr("usage: plemoractl COMMAND"));
  EXPECT_THAT(ctl({"volume", "--help"}, environment).out,
              HasSubstr("usage: plemoractl volume APP"));
  EXPECT_THAT(ctl({"--version"}, environment).out, testing::MatchesRegex("plemoractl [0-9.]+\n"));
}

TEST_F(PlemoractlTest, WatchPrintsALinePerChangeIntoAPipe) {
  QProcess watch;
  watch.setProcessEnvironment(bus.environment());
  watch.start(PLEMORACTL, {"watch"});
  QByteArray out;
  const auto printed = [&](const char* text) {
    return until([&] {
      out += watch.readAllStandardOutput();
      return out.contains(text);
    });
  };
  ASSERT_TRUE(printed("mpv Media Player (mpv): new")) << watch.readAllStandardError().toStdString();
  EXPECT_FALSE(out.contains("->")) << "nothing has changed yet";
  service->setAppVolume("mpv", 0.4);
  EXPECT_TRUE(printed("mpv Media Player (mpv): volume 100% -> 40%\n"));
  service->setDefaultDevice("usb");
  EXPECT_TRUE(printed("master: device Speakers -> Desk\n"));
  EXPECT_FALSE(out.contains('\x1b'));
  watch.terminate();
  ASSERT_TRUE(until([&] { return watch.state() == QProcess::NotRunning; }));
  EXPECT_EQ(watch.exitCode(), 0);
}

TEST_F(PlemoractlTest, WatchDrawsOnATerminalAndGivesItBack) {
  const int terminal = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  ASSERT_EQ(grantpt(terminal), 0);
  ASSERT_EQ(unlockpt(terminal), 0);
  auto environment = bus.environment();
  environment.insert("TERM", "xterm");
  QProcess watch;
  watch.setProcessEnvironment(environment);
  watch.setStandardOutputFile(ptsname(terminal));
  const int idle = world.main.pendingTimers();
  service->setAppVolume("mpv", 0.5);
  world.settle();
  watch.start(PLEMORACTL, {"watch"});
  QByteArray out;
  const auto drawn = [&](const char* text) {
    return until([&] {
      char bytes[4096];
      for (ssize_t count; (count = read(terminal, bytes, sizeof bytes)) > 0;) {
        out.append(bytes, count);
      }
      return out.contains(text);
    });
  };
  ASSERT_TRUE(drawn("mpv Media P"));
  EXPECT_TRUE(out.startsWith("\x1b[?1049h"));
  EXPECT_EQ(world.main.pendingTimers(), idle + 1);
  world.hal.step(64);
  world.hal.step(64);
  world.pass(MixerService::levelInterval);
  EXPECT_TRUE(drawn("-12.0 dB"));

  ::kill(static_cast<pid_t>(watch.processId()), SIGINT);
  ASSERT_TRUE(until([&] { return watch.state() == QProcess::NotRunning; }));
  EXPECT_EQ(watch.exitCode(), 0);
  EXPECT_TRUE(drawn("\x1b[?25h\x1b[?1049l"));
  EXPECT_TRUE(until([&] { return world.main.pendingTimers() == idle; })) << "its watch has ended";
  ::close(terminal);
}

TEST_F(PlemoractlTest, WatchEndsWithTheMixer) {
  QProcess watch;
  watch.setProcessEnvironment(bus.environment());
  watch.start(PLEMORACTL, {"watch"});
  ASSERT_TRUE(until([&] { return watch.bytesAvailable() > 0; }));
  mixerConnection.unregisterService(mixerBusName);
  ASSERT_TRUE(until([&] { return watch.state() == QProcess::NotRunning; }));
  EXPECT_EQ(watch.exitCode(), 3);
  EXPECT_THAT(watch.readAllStandardError().toStdString(), HasSubstr("plemora has ended"));
}

TEST_F(PlemoractlTest, WritingToAFullDiskIsAFailure) {
  QProcess process;
  process.setProcessEnvironment(bus.environment());
  process.setStandardOutputFile("/dev/full");
  process.start(PLEMORACTL, {"list"});
  ASSERT_TRUE(until([&] { return process.state() == QProcess::NotRunning; }));
  EXPECT_EQ(process.exitCode(), 1);
  EXPECT_THAT(process.readAllStandardError().toStdString(), HasSubstr("cannot write the output"));
}

}  // namespace
}  // namespace plemora
