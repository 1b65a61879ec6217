#include <unistd.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QGuiApplication>
#include <algorithm>
#include <chrono>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "adapters/linux/dbus/mixer_adaptor.h"
#include "adapters/linux/dbus/mixer_client.h"
#include "adapters/linux/dbus/mixer_names.h"
#include "adapters/linux/desktop/console_log.h"
#include "base/log.h"
#include "main/gallery/gallery.h"
#include "main/linux_panel.h"
#include "main/linux_program.h"
#include "main/process/display_probe.h"
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

// Gives the arguments to the running instance, and shows it on this desktop if it is wanted there.
// It may still be on its way to the bus.
Exit handOver(const QDBusConnection& bus, const std::vector<std::string>& arguments, bool shows) {
  using namespace std::chrono_literals;
  if (!bus.isConnected()) {
    printError("it runs already, and without a session bus it cannot be given these arguments");
    return failure;
  }
  const auto listOf = [](const std::vector<std::string>& words) {
    QStringList list;
    for (const std::string& word : words) {
      list << QString::fromStdString(word);
    }
    return list;
  };
  std::string problem;
  for (int attempt = 0; attempt < 30; ++attempt) {
    try {
      MixerClient client(bus);
      if (shows) {
        client.call("Join", {listOf(desktopEnvironment())});
      }
      client.call("Activate", {listOf(arguments)});
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
                "; this instance goes on");
}

/// The one instance: the engine, and the panel while there is a desktop to show it on.
class Instance {
 public:
  Instance(int& argc, char** argv, std::vector<std::string> arguments)
      : argc_(argc), argv_(argv), arguments_(std::move(arguments)) {}

  Exit run(bool shows) {
    makeApplication(shows);
    auto bus = QDBusConnection::sessionBus();
    const InstanceLock lock(InstanceLock::defaultFile());
    if (lock.result() == InstanceLock::Result::held || isRunning(bus)) {
      return handOver(bus, arguments_, shows);
    }
    if (lock.result() == InstanceLock::Result::unavailable) {
      if (!bus.isConnected()) {
        printError(
            "cannot make sure that it is the only instance: no session bus, and no lock file (" +
            lock.problem() + "); set XDG_RUNTIME_DIR to a folder of yours");
        return failure;
      }
      logger.warning("no lock file (" + lock.problem() +
                     "); the session bus alone tells instances");
    }
    const Exit result = runEngine(bus, shows);
    logger.info("ended; every app is back on its usual path");
    return result;
  }

 private:
  static constexpr int joinDesktopCode = 100;  // of the event loop

  void makeApplication(bool shows) {
    application_.reset();
    if (!shows) {
      application_ = std::make_unique<QCoreApplication>(argc_, argv_);
      return;
    }
    LinuxDesktop::prepare();
    auto application = std::make_unique<QGuiApplication>(argc_, argv_);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    QGuiApplication::setDesktopFileName(mixerBusName);
    application_ = std::move(application);
  }

  Exit runEngine(QDBusConnection& bus, bool shows) {
    // First of all: whoever sees the program on the bus may end it at once, and in order. Not by
    // quit(), which an open window can refuse.
    const auto listen = [] {
      return std::make_unique<EndingSignals>([] { QCoreApplication::exit(); });
    };
    auto ending = listen();
    LinuxProgram program(arguments_, PLEMORA_VERSION);
    std::optional<LinuxPanel> panel;
    std::optional<MixerAdaptor> adaptor;
    if (bus.isConnected()) {
      adaptor.emplace(bus, program.service());
      bool hasJoined = false;
      adaptor->setActivateHandler([&](const std::vector<std::string>& arguments) {
        logActivation(arguments);
        // A second start on the same desktop means: let me see it. The service's own does not.
        const bool isService =
            std::find(arguments.begin(), arguments.end(), "--no-ui") != arguments.end();
        if (panel && !isService && !std::exchange(hasJoined, false)) {
          panel->open();
        }
      });
      adaptor->setQuitHandler([] { QCoreApplication::exit(); });
      adaptor->setJoinHandler([&](const std::vector<std::string>& environment) {
        if (panel) {
          return true;
        }
        joinDesktop(environment);
        if (displayAnswers()) {
          hasJoined = true;
          QCoreApplication::exit(joinDesktopCode);
        }
        return false;
      });
      if (!adaptor->registerObject() || !bus.registerService(mixerBusName)) {
        return handOver(bus, arguments_, shows);
      }
    } else {
      logger.warning("no session bus (" + bus.lastError().message().toStdString() +
                     "): plemoractl cannot reach this instance");
    }
    if (shows) {
      panel.emplace(program, bus, PLEMORA_VERSION);
    }
    while (QCoreApplication::exec() == joinDesktopCode) {
      // The engine goes on untouched; only the event loop is exchanged for one that has windows.
      ending.reset();
      program.mainQueue().rest();
      makeApplication(true);
      program.mainQueue().resume();
      ending = listen();
      panel.emplace(program, bus, PLEMORA_VERSION);
      logger.notice("joined the desktop");
    }
    return success;
  }

  int& argc_;
  char** argv_;
  const std::vector<std::string> arguments_;
  std::unique_ptr<QCoreApplication> application_;
};

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
  if (options->screenshots) {
    return renderScreenshots(*options->screenshots);
  }
  bool shows = !options->withoutWindow;
  if (shows && !displayAnswers()) {
    logger.notice("no display answers: the engine runs without a window; plemoractl controls it");
    shows = false;
  }
  return Instance(argc, argv, arguments).run(shows);
}
