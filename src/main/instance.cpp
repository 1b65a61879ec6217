#include "main/instance.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <optional>
#include <thread>
#include <utility>

#include "adapters/linux/dbus/mixer_adaptor.h"
#include "adapters/linux/dbus/mixer_client.h"
#include "adapters/linux/dbus/mixer_names.h"
#include "base/log.h"
#include "main/desktop_ui.h"
#include "main/linux_program.h"
#include "main/process/display_probe.h"
#include "main/process/ending_signals.h"
#include "main/process/instance_lock.h"
#include "main/program_options.h"

namespace plemora {

void printError(const std::string& message) {
  std::fputs(("plemora: " + message + "\n").c_str(), stderr);
}

namespace {

constexpr Logger logger("program");

constexpr int joinDesktopCode = 100;  // of the event loop
constexpr double openingDelay = 0.3;  // seconds

bool isRunning(const QDBusConnection& bus) {
  return bus.isConnected() && bus.interface()->isServiceRegistered(mixerBusName);
}

// Gives the arguments to the running instance, and shows it on this desktop if it is wanted there.
// It may still be on its way to the bus, or about to end: none when it has.
std::optional<Exit> handOver(const QDBusConnection& bus, InstanceLock& lock,
                             const std::vector<std::string>& arguments, bool shows) {
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
    if (lock.retry() != InstanceLock::Result::held && !isRunning(bus)) {
      return std::nullopt;
    }
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

}  // namespace

Instance::Instance(int& argc, char** argv, std::vector<std::string> arguments)
    : argc_(argc), argv_(argv), arguments_(std::move(arguments)) {}

Instance::~Instance() = default;

void Instance::makeWindowed() {
  // The toolkit's modules forget how to be read out when an application object goes that was there
  // before them, so they are loaded when none is.
  application_.reset();
  std::string problem;
  ui_ = loadDesktopUi(problem);
  if (ui_ == nullptr) {
    logger.error("the panel cannot be loaded: " + problem);
    application_ = std::make_unique<QCoreApplication>(argc_, argv_);
  } else {
    application_ = ui_->makeApplication(argc_, argv_);
  }
}

Exit Instance::run(bool hasDesktop, const ProgramOptions& options) {
  options_ = options;
  application_ = std::make_unique<QCoreApplication>(argc_, argv_);
  auto bus = QDBusConnection::sessionBus();
  InstanceLock lock(InstanceLock::defaultFile());
  if (lock.result() == InstanceLock::Result::held || isRunning(bus)) {
    if (const auto result = handOver(bus, lock, arguments_, hasDesktop)) {
      return *result;
    }
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
  if (hasDesktop) {
    // The bus has left word for the first turn of the event loop: to begin with its messages.
    QCoreApplication::processEvents();
    makeWindowed();
  }
  const Exit result = runEngine(bus, lock);
  noteEnding("its way off the desktop");
  logger.info("ended; every app is back on its usual path");
  return result;
}

Exit Instance::runEngine(QDBusConnection& bus, InstanceLock& lock) {
  // First of all: whoever sees the program on the bus may end it at once, and in order. Not by
  // quit(), which an open window can refuse.
  const auto listen = [] {
    return std::make_unique<EndingSignals>([] { QCoreApplication::exit(); });
  };
  auto ending = listen();
  LinuxProgram program(arguments_, PLEMORA_VERSION);
  std::unique_ptr<Panel> panel;
  Timer opening;
  std::optional<MixerAdaptor> adaptor;
  bool hasJoined = false;
  if (bus.isConnected()) {
    adaptor.emplace(bus, program.service());
    adaptor->setActivateHandler([&](const std::vector<std::string>& arguments) {
      logActivation(arguments);
      std::string problem;
      options_ = parseProgramOptions(arguments, problem).value_or(ProgramOptions());
      const bool isFirst = std::exchange(hasJoined, false);
      if (!panel || options_.withoutWindow) {
        return;
      }
      const bool setsUp = options_.setsUp || (isFirst && panel->needsSetUp());
      if (setsUp) {
        panel->setUp();
      }
      // A second start on the same desktop means: let me see it. A URL that asks for something else
      // does not.
      const bool wantsPanel = options_.opensPanel || (!options_.hasURL && !isFirst);
      if (options_.hasPanelURL || (wantsPanel && !setsUp)) {
        panel->open();
      }
    });
    adaptor->setQuitHandler([] { QCoreApplication::exit(); });
    adaptor->setJoinHandler([&](const std::vector<std::string>& environment) {
      if (panel) {
        return true;
      }
      joinDesktop(environment);
      if (!displayAnswers()) {
        logger.warning("cannot join the desktop: no display answers");
        return false;
      }
      hasJoined = true;
      QCoreApplication::exit(joinDesktopCode);
      return false;
    });
    if (!adaptor->registerObject() || !bus.registerService(mixerBusName)) {
      return handOver(bus, lock, arguments_, ui_ != nullptr).value_or(failure);
    }
  } else {
    logger.warning("no session bus (" + bus.lastError().message().toStdString() +
                   "): plemoractl cannot reach this instance");
  }
  const auto show = [&] {
    panel = ui_->makePanel(program, bus, PLEMORA_VERSION);
    const bool setsUp = options_.setsUp || panel->needsSetUp();
    if (setsUp) {
      panel->setUp();
    }
    if (options_.hasPanelURL || (options_.opensPanel && !setsUp)) {
      // Once the tray has had its moment to say where the icon is.
      opening = program.mainQueue().after(openingDelay, [&panel] { panel->open(); });
    }
  };
  if (ui_ != nullptr) {
    show();
  }
  while (QCoreApplication::exec() == joinDesktopCode) {
    // The engine goes on untouched; only the event loop is exchanged for one that has windows.
    ending.reset();
    program.mainQueue().rest();
    makeWindowed();
    program.mainQueue().resume();
    ending = listen();
    if (ui_ != nullptr) {
      show();
      logger.notice("joined the desktop");
    }
  }
  noteEnding("its windows");
  boundEnding();
  opening.reset();
  panel.reset();
  noteEnding("the apps' way back to their usual path");
  return success;
}

}  // namespace plemora
