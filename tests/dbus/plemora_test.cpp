#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <QDBusConnectionInterface>
#include <algorithm>
#include <memory>
#include <vector>

#include "adapters/linux/dbus/mixer_names.h"
#include "dbus/private_bus.h"

namespace plemora {
namespace {

using testing::HasSubstr;

// The program itself, on a bus of its own and without a sound server.
class PlemoraTest : public testing::Test {
 protected:
  using Process = std::unique_ptr<QProcess>;

  Process start(const QString& program, const QStringList& arguments,
                const QProcessEnvironment& environment) {
    auto process = std::make_unique<QProcess>();
    process->setProcessEnvironment(environment);
    process->start(program, arguments);
    EXPECT_TRUE(process->waitForStarted());
    return process;
  }
  Process start(const QStringList& arguments) {
    return start(PLEMORA, arguments, bus.environment());
  }

  /// A first instance, once it is on the bus.
  Process running(const QStringList& arguments = {"--no-ui"}) {
    Process process = start(arguments);
    EXPECT_TRUE(runUntil([&] { return isOnBus(); }, [] {}));
    return process;
  }

  bool isOnBus() { return connection.interface()->isServiceRegistered(mixerBusName); }

  /// The exit status; -1 for one that a signal killed, -2 for one that does not end.
  static int statusOf(QProcess& process) {
    if (process.state() != QProcess::NotRunning && !process.waitForFinished(10000)) {
      return -2;
    }
    return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
  }

  /// Reads the log until the text is there.
  static bool logs(QProcess& process, std::string& log, const char* text) {
    return runUntil(
        [&] {
          log += process.readAllStandardError().toStdString();
          return log.find(text) != std::string::npos;
        },
        [] {});
  }

  int argumentCount = 1;
  char programName[5] = "test";
  char* argumentValues[2] = {programName, nullptr};
  QCoreApplication application{argumentCount, argumentValues};
  PrivateBus bus;
  QDBusConnection connection = bus.connection("test");
};

TEST_F(PlemoraTest, SignalsEndItInOrder) {
  for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
    Process process = running();
    ::kill(static_cast<pid_t>(process->processId()), number);
    EXPECT_EQ(statusOf(*process), 0) << number;
    EXPECT_THAT(process->readAllStandardError().toStdString(), HasSubstr("ended"));
    EXPECT_TRUE(runUntil([&] { return !isOnBus(); }, [] {}));
  }
}

TEST_F(PlemoraTest, ASecondStartHandsItsArgumentsOver) {
  Process first = running();
  Process second = start({"--log-levels"});
  EXPECT_EQ(statusOf(*second), 0);
  EXPECT_THAT(second->readAllStandardError().toStdString(), HasSubstr("it runs already"));
  std::string log;
  EXPECT_TRUE(logs(*first, log, "started again with --log-levels")) << log;
  EXPECT_EQ(first->state(), QProcess::Running);
  first->terminate();
  EXPECT_EQ(statusOf(*first), 0);
}

TEST_F(PlemoraTest, OfStartsAtTheSameTimeOneStays) {
  std::vector<Process> processes;
  for (int i = 0; i < 5; ++i) {
    processes.push_back(start({"--no-ui"}));
  }
  const auto alive = [&] {
    return std::count_if(processes.begin(), processes.end(), [](const Process& process) {
      return process->state() != QProcess::NotRunning;
    });
  };
  EXPECT_TRUE(runUntil([&] { return alive() == 1; }, [] {})) << alive() << " run";
  for (const Process& process : processes) {
    if (process->state() != QProcess::NotRunning) {
      process->terminate();
    }
    EXPECT_EQ(statusOf(*process), 0) << process->readAllStandardError().toStdString();
  }
}

TEST_F(PlemoraTest, StartsAgainAfterACrash) {
  Process first = running();
  first->kill();
  EXPECT_EQ(statusOf(*first), -1);
  ASSERT_TRUE(runUntil([&] { return !isOnBus(); }, [] {}));
  Process second = running();
  EXPECT_EQ(second->state(), QProcess::Running);
  second->terminate();
  EXPECT_EQ(statusOf(*second), 0);
}

TEST_F(PlemoraTest, WrongOptionsAreRefusedAtOnce) {
  Process process = start({"--nonsense"});
  EXPECT_EQ(statusOf(*process), 2);
  EXPECT_THAT(process->readAllStandardError().toStdString(),
              HasSubstr("unknown option \"--nonsense\""));
}

TEST_F(PlemoraTest, WithoutASoundServerItWaitsAndSaysSo) {
  Process process = running();
  std::string log;
  EXPECT_TRUE(logs(*process, log, "no sound server answers")) << log;
  Process list = start(PLEMORACTL, {"list"}, bus.environment());
  EXPECT_EQ(statusOf(*list), 4);
  EXPECT_EQ(process->state(), QProcess::Running);
  process->terminate();
  EXPECT_EQ(statusOf(*process), 0);
}

TEST_F(PlemoraTest, WithoutASessionBusItRunsAlone) {
  auto environment = bus.environment();
  environment.insert("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + bus.path("nothing"));
  Process first = start(PLEMORA, {"--no-ui"}, environment);
  std::string log;
  EXPECT_TRUE(logs(*first, log, "no session bus")) << log;

  Process second = start(PLEMORA, {"--no-ui"}, environment);
  EXPECT_EQ(statusOf(*second), 1);
  EXPECT_THAT(second->readAllStandardError().toStdString(), HasSubstr("it runs already"));
  EXPECT_EQ(first->state(), QProcess::Running);
  first->terminate();
  EXPECT_EQ(statusOf(*first), 0);

  environment.remove("XDG_RUNTIME_DIR");
  Process alone = start(PLEMORA, {"--no-ui"}, environment);
  EXPECT_EQ(statusOf(*alone), 1);
  EXPECT_THAT(alone->readAllStandardError().toStdString(), HasSubstr("set XDG_RUNTIME_DIR"));
}

TEST_F(PlemoraTest, ADemonstrationIsControlledLikeTheRealThing) {
  Process process = running({"--no-ui", "-demo",
                             R"({"apps":[{"bundle":"demo.player","volume":0.4,"playing":true,)"
                             R"("muted":true}],"extraDevices":[{"name":"AirPods","kind":"bt"}]})"});
  const auto ctl = [&](const QStringList& arguments) {
    Process run = start(PLEMORACTL, arguments, bus.environment());
    EXPECT_EQ(statusOf(*run), 0) << run->readAllStandardError().toStdString();
    return run->readAllStandardOutput().toStdString();
  };
  EXPECT_THAT(ctl({"list"}),
              HasSubstr("demo.player  yes         40%  muted  default  demo.player"));
  ctl({"volume", "demo", "+20%"});
  ctl({"output", "demo", "airpods"});
  EXPECT_THAT(ctl({"list"}), HasSubstr("demo.player  yes         60%  -     AirPods  demo.player"));
  process->terminate();
  EXPECT_EQ(statusOf(*process), 0);
}

}  // namespace
}  // namespace plemora
