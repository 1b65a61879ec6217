#include <unistd.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <algorithm>
#include <chrono>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "adapters/linux/dbus/mixer_adaptor.h"
#include "adapters/linux/dbus/mixer_client.h"
#include "adapters/linux/dbus/mixer_names.h"
#include "adapters/linux/desktop/console_log.h"
#include "base/log.h"
#include "main/linux_program.h"
#include "main/process/ending_signals.h"
#include "main/process/instance_lock.h"
#include "main/program_options.h"

namespace {

using namespace plemora;

constexpr Logger logger("program");

enum Exit { success = 0, failure = 1, usage = 2 };

void printError(const std::string& message) {
  std::fputs(("plemora: " + message + "\n").c_str(), stderr);
}

bool isRunning(const QDBusConnection& bus) {
  return bus.isConnected() && bus.interface()->isServiceRegistered(mixerBusName);
}

// Gives the arguments to the running instance. It may still be on its way to the bus.
Exit handOver(const QDBusConnection& bus, const std::vector<std::string>& arguments) {
  using namespace std::chrono_literals;
  if (!bus.isConnected()) {
    printError("it runs already, and without a session bus it cannot be given these arguments");
    return failure;
  }
  QStringList words;
  for (const std::string& argument : arguments) {
    words << QString::fromStdString(argument);
  }
  std::string problem;
  for (int attempt = 0; attempt < 30; ++attempt) {
    try {
      MixerClient(bus).call("Activate", {words});
      printError("it runs already and was given these arguments");
      return success;
    } catch (const ClientError& error) {
      problem = error.what();
    }
    std::this_thread::sleep_for(100ms);
  }
  printError("it runs already, but cannot be reached over this session bus: " + problem);
  return failure;
}

void logActivation(const std::vector<std::string>& arguments) {
  std::string words;
  for (const std::string& argument : arguments) {
    words += " " + argument;
  }
  // A message is one line; a demo configuration may hold more.
  std::replace(words.begin(), words.end(), '\n', ' ');
  logger.notice("started again" + (words.empty() ? "" : " with" + words) +
                "; this instance goes on, without a window");
}

Exit runEngine(QDBusConnection& bus, const std::vector<std::string>& arguments) {
  // First of all: whoever sees the program on the bus may end it at once, and in order.
  const EndingSignals ending([] { QCoreApplication::quit(); });
  LinuxProgram program(arguments, PLEMORA_VERSION);
  std::optional<MixerAdaptor> adaptor;
  if (bus.isConnected()) {
    adaptor.emplace(bus, program.service());
    adaptor->setActivateHandler(logActivation);
    adaptor->setQuitHandler([] { QCoreApplication::quit(); });
    if (!adaptor->registerObject() || !bus.registerService(mixerBusName)) {
      return handOver(bus, arguments);
    }
  } else {
    logger.warning("no session bus (" + bus.lastError().message().toStdString() +
                   "): plemoractl cannot reach this instance");
  }
  QCoreApplication::exec();
  return success;
}

Exit run(const std::vector<std::string>& arguments) {
  auto bus = QDBusConnection::sessionBus();
  const InstanceLock lock(InstanceLock::defaultFile());
  if (lock.result() == InstanceLock::Result::held || isRunning(bus)) {
    return handOver(bus, arguments);
  }
  if (lock.result() == InstanceLock::Result::unavailable) {
    if (!bus.isConnected()) {
      printError(
          "cannot make sure that it is the only instance: no session bus, and no lock file (" +
          lock.problem() + "); set XDG_RUNTIME_DIR to a folder of yours");
      return failure;
    }
    logger.warning("no lock file (" + lock.problem() + "); the session bus alone tells instances");
  }
  const Exit result = runEngine(bus, arguments);
  logger.info("ended; every app is back on its usual path");
  return result;
}

}  // namespace

int main(int argc, char** argv) {
  std::setlocale(LC_ALL, "");
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  std::string problem;
  const auto options = parseProgramOptions(arguments, problem);
  if (!options) {
    printError(problem + "\nTry \"plemora --help\".");
    return usage;
  }
  if (options->wantsHelp) {
    std::fputs(programHelp().c_str(), stdout);
    return success;
  }
  if (options->wantsVersion) {
    std::puts("plemora " PLEMORA_VERSION);
    return success;
  }
  // The log may go to a pipe whose reader ends first.
  std::signal(SIGPIPE, SIG_IGN);
  setLogHandler(makeConsoleLog());
  const QCoreApplication application(argc, argv);
  if (!options->withoutWindow) {
    logger.notice("the engine runs without a window; plemoractl controls it");
  }
  return run(arguments);
}
