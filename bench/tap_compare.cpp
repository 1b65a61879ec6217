// Measures, side by side in one run in a private session: apps on their direct path, tapped by the
// program, and each behind a pw-loopback, as a user would set it up for a volume of its own.
//   tap_compare [--seconds N] [--rounds N] [--apps 1,8,32,64] [--quanta 1024,256]
//               [--clients native,pulse,shared] [--only-costs yes]
// Each app is a process of its own. It plays through the server's own protocol ("native": the
// server wakes each of them in every cycle) or, as most programs on a desktop do, through the
// PulseAudio server in front of it ("pulse": one process that the server wakes once for each). Or
// all of them are streams of one program ("shared"), each with a pw-loopback of its own.
// Counted is the processor time of the sound server, all of it: also what it spends on waking the
// apps and mixing them, which "direct" shows and neither way can spare. With it goes that of our
// process, or of all the pw-loopbacks. The apps, the PulseAudio server and the session manager are
// not counted. In each round the three ways follow each other; shown are the medians of the rounds.

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "support/pipewire/player.h"
#include "support/pipewire/private_session.h"
#include "support/pipewire/program_under_test.h"
#include "support/pipewire/sink_recorder.h"
#include "support/wait.h"

namespace {

using namespace plemora::rig;

struct Settings {
  double seconds = 5;
  int rounds = 3;
  std::vector<int> apps = {1, 8, 32, 64};
  std::vector<int> quanta = {1024, 256};
  std::vector<std::string> clients = {"native", "pulse", "shared"};
  bool onlyCosts = false;
};

std::string nameOf(int number) {
  return "app" + std::to_string(100 + number);
}

/// A pw-loopback of each app: a sink of its own that plays on to the real one.
class Loopbacks {
 public:
  Loopbacks(PrivateSession& session, int count) : session_(session) {
    for (int i = 0; i < count; ++i) {
      ChildOptions options;
      const std::string sink = "loop-" + nameOf(i);
      options.arguments = {
          "pw-loopback", "--capture-props", "{ media.class = Audio/Sink node.name = " + sink + " }",
          "--playback-props", "{ target.object = first node.name = " + sink + "-out }"};
      options.environment = session.environment();
      options.logFile = session.directory() + "/loopbacks.log";
      processes_.push_back(std::make_unique<ChildProcess>(options));
    }
    for (int i = 0; i < count; ++i) {
      if (!eventually(10, [&] { return session.graph().sync() && move(i); }) ||
          !session.waitForLink(nameOf(i), "loop-" + nameOf(i)) ||
          !session.waitForLink("loop-" + nameOf(i) + "-out", "first")) {
        throw std::runtime_error("an app does not reach its loopback\n" + session.logs());
      }
    }
  }

  double cpu() const {
    double sum = 0;
    for (const auto& process : processes_) {
      sum += cpuMilliseconds(process->pid());
    }
    return sum;
  }
  std::size_t residentKiB() const {
    std::size_t sum = 0;
    for (const auto& process : processes_) {
      sum += residentKiBOf(process->pid());
    }
    return sum;
  }
  void kill(int number) { processes_.at(static_cast<std::size_t>(number))->kill(); }

 private:
  /// Sends the app to its loopback, as a volume control does.
  bool move(int number) const {
    auto& graph = session_.graph();
    const auto sink = graph.node("loop-" + nameOf(number));
    const auto app = graph.node(nameOf(number));
    if (!sink || !app || graph.ports(sink->id).empty()) {
      return false;
    }
    graph.setMetadata("default", app->id, "target.object", "Spa:Id", sink->get("object.serial"));
    return true;
  }

  PrivateSession& session_;
  std::vector<std::unique_ptr<ChildProcess>> processes_;
};

/// Waits until all apps play on their direct path.
void waitForApps(PrivateSession& session, int count) {
  for (int i = 0; i < count; ++i) {
    if (!session.waitForLink(nameOf(i), "first")) {
      throw std::runtime_error(nameOf(i) + " does not play\n" + session.logs());
    }
  }
}

std::vector<std::unique_ptr<TonePlayer>> startApps(PrivateSession& session, int count,
                                                   const Signal& signal) {
  std::vector<std::unique_ptr<TonePlayer>> apps;
  for (int i = 0; i < count; ++i) {
    apps.push_back(
        std::make_unique<TonePlayer>(session, ToneOptions{.name = nameOf(i), .signal = signal}));
  }
  waitForApps(session, count);
  return apps;
}

/// Apps that play through the PulseAudio server: copies of paplay, each an app of its own.
std::vector<std::unique_ptr<ChildProcess>> startPulseApps(PrivateSession& session, int count) {
  namespace fs = std::filesystem;
  const fs::path folder = fs::path(session.directory()) / "pulse-apps";
  fs::create_directories(folder);
  const fs::path sound = folder / "sound.raw";
  if (!fs::exists(sound)) {
    // Two minutes of a quiet 375 Hz tone, 16-bit stereo.
    std::ofstream file(sound, std::ios::binary);
    for (int frame = 0; frame < 120 * 48000; ++frame) {
      const auto sample = static_cast<std::int16_t>(300 * (frame % 128 < 64 ? 1 : -1));
      const std::int16_t both[] = {sample, sample};
      file.write(reinterpret_cast<const char*>(both), sizeof(both));
    }
  }
  std::vector<std::unique_ptr<ChildProcess>> apps;
  for (int i = 0; i < count; ++i) {
    const fs::path program = folder / nameOf(i);
    fs::copy_file("/usr/bin/pacat", program, fs::copy_options::skip_existing);
    ChildOptions options;
    options.arguments = {program.string(), "--playback",   "--format=s16le",
                         "--rate=48000",   "--channels=2", "--client-name=" + nameOf(i),
                         sound.string()};
    options.environment = session.environment();
    options.logFile = session.directory() + "/players.log";
    apps.push_back(std::make_unique<ChildProcess>(options));
  }
  waitForApps(session, count);
  return apps;
}

/// One program with a stream for each app.
std::vector<std::unique_ptr<TonePlayer>> startShared(PrivateSession& session, int count) {
  std::vector<std::unique_ptr<TonePlayer>> program;
  program.push_back(std::make_unique<TonePlayer>(
      session, ToneOptions{.name = "shared", .signal = Signal::sine(440, 0.01), .streams = 0}));
  for (int i = 0; i < count; ++i) {
    program.front()->open(nameOf(i));
  }
  waitForApps(session, count);
  return program;
}

void turnDown(ProgramUnderTest& plemora, const std::string& app) {
  plemora.waitForApp(app);
  plemora.must({"volume", app, "50%"});
}

struct Cost {
  double ours = 0;    ///< ms of CPU per second of audio
  double server = 0;  ///< likewise, of the sound server
  double megabytes = 0;
};

/// Over a while of undisturbed playing.
template <typename Ours>
Cost measureCost(PrivateSession& session, double seconds, Ours ours) {
  const pid_t server = session.process(Daemon::pipeWire).pid();
  usleep(1000000);
  const double oursBefore = ours();
  const double serverBefore = cpuMilliseconds(server);
  const auto start = std::chrono::steady_clock::now();
  usleep(static_cast<useconds_t>(seconds * 1e6));
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
  return {(ours() - oursBefore) / took.count(),
          (cpuMilliseconds(server) - serverBefore) / took.count()};
}

/// One round: the three ways, one after the other in one session.
struct Round {
  Cost direct;
  Cost tapped;
  Cost looped;
};

Round measureRound(const Settings& settings, const std::string& clients, int count, int quantum) {
  PrivateSession session;
  session.createSinks(quantum);
  std::vector<std::unique_ptr<ChildProcess>> pulse;
  std::vector<std::unique_ptr<TonePlayer>> players;
  if (clients == "pulse") {
    pulse = startPulseApps(session, count);
  } else if (clients == "shared") {
    players = startShared(session, count);
  } else {
    players = startApps(session, count, Signal::sine(440, 0.01));
  }
  Round round;
  round.direct = measureCost(session, settings.seconds, [] { return 0.0; });
  {
    ProgramUnderTest plemora(session);
    if (clients == "shared") {
      turnDown(plemora, "shared");
    } else {
      for (int i = 0; i < count; ++i) {
        turnDown(plemora, nameOf(i));
      }
    }
    round.tapped = measureCost(session, settings.seconds,
                               [&] { return cpuMilliseconds(plemora.process().pid()); });
    round.tapped.megabytes = static_cast<double>(plemora.residentKiB()) / 1024;
    plemora.process().stop();
  }
  const Loopbacks loopbacks(session, count);
  round.looped = measureCost(session, settings.seconds, [&] { return loopbacks.cpu(); });
  round.looped.megabytes = static_cast<double>(loopbacks.residentKiB()) / 1024;
  return round;
}

void printCost(const Settings& settings, const std::string& clients, int count, int quantum) {
  std::vector<Round> rounds;
  for (int i = 0; i < settings.rounds; ++i) {
    rounds.push_back(measureRound(settings, clients, count, quantum));
  }
  const auto median = [&](const auto& valueOf) {
    std::vector<double> values;
    std::transform(rounds.begin(), rounds.end(), std::back_inserter(values), valueOf);
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
  };
  const auto print = [&](const char* end, Cost Round::*way) {
    std::printf(" %6.1f / %5.1f  %5.1f MB %s",
                median([&](const Round& round) { return (round.*way).ours; }),
                median([&](const Round& round) { return (round.*way).server; }),
                median([&](const Round& round) { return (round.*way).megabytes; }), end);
  };
  const auto all = [](const Cost& cost) { return cost.ours + cost.server; };
  std::printf("%5d %8d | %8.1f |", count, quantum,
              median([](const Round& round) { return round.direct.server; }));
  print("|", &Round::tapped);
  print("|", &Round::looped);
  std::printf(" 1/%-5.1f 1/%.1f\n",
              median([&](const Round& round) { return all(round.looped) / all(round.tapped); }),
              median([&](const Round& round) {
                return (all(round.looped) - all(round.direct)) /
                       (all(round.tapped) - all(round.direct));
              }));
  std::fflush(stdout);
}

void printCosts(const Settings& settings) {
  for (const std::string& clients : settings.clients) {
    std::printf(
        "\nCPU, ms per second of audio: ours / the server's; resident memory of ours; %s apps\n",
        clients.c_str());
    std::printf("%5s %8s | %8s | %24s | %24s | %s\n", "apps", "quantum", "direct", "plemora",
                "pw-loopback", "of pw-loopback's: together, beyond direct");
    for (const int quantum : settings.quanta) {
      for (const int count : settings.apps) {
        printCost(settings, clients, count, quantum);
      }
    }
  }
}

/// Frames that the app's samples are late at the sink, against where they left the app: both
/// recorded in the cycles of one driver.
std::int64_t delay(PrivateSession& session, double gain) {
  SinkRecorder source(session, nameOf(0));
  SinkRecorder sink(session, "first");
  source.clear();
  sink.clear();
  source.record(9600);
  sink.record(9600);
  const auto left = source.take();
  const auto arrived = sink.take();
  for (std::size_t i = 0; i < arrived.frames; ++i) {
    const auto number = identityFrame(arrived[0][i], 0, gain);
    const auto at = static_cast<std::int64_t>(arrived.position + i);
    const auto j = at - static_cast<std::int64_t>(left.position);
    if (number >= 0 && j >= 0 && j < static_cast<std::int64_t>(left.frames)) {
      return identityFrame(left[0][static_cast<std::size_t>(j)], 0) - number;
    }
  }
  throw std::runtime_error("the app is not recognised at the sink");
}

/// Frames lost or silent at the sink while something is done to the app's path.
template <typename Action>
std::size_t disturbed(PrivateSession& session, Action action) {
  SinkRecorder sink(session, "first");
  sink.record(4800);
  action();
  sink.record(48000);
  const auto heard = sink.take();
  std::size_t silent = 0;
  for (const float sample : heard[0]) {
    silent += sample == 0 ? 1u : 0u;
  }
  return silent;
}

void printPaths(const Settings& settings) {
  std::printf("\nAdded delay, and silent frames when the way is set up and when it is killed\n");
  std::printf("%8s | %8s | %22s | %22s\n", "quantum", "direct", "plemora", "pw-loopback");
  for (const int quantum : settings.quanta) {
    PrivateSession session;
    session.createSinks(quantum);
    const auto apps = startApps(session, 1, Signal::identity());
    const auto direct = delay(session, 1);
    std::int64_t tapped = 0;
    std::size_t tappedIn = 0;
    std::size_t tappedKilled = 0;
    {
      ProgramUnderTest plemora(session);
      tappedIn = disturbed(session, [&] { turnDown(plemora, nameOf(0)); });
      tapped = delay(session, 0.25) - direct;
      tappedKilled = disturbed(session, [&] { plemora.process().kill(); });
    }
    std::unique_ptr<Loopbacks> loopbacks;
    const auto loopedIn =
        disturbed(session, [&] { loopbacks = std::make_unique<Loopbacks>(session, 1); });
    const auto looped = delay(session, 1) - direct;
    const auto loopedKilled = disturbed(session, [&] { loopbacks->kill(0); });
    std::printf("%8d | %8ld | %6ld, %5zu, %5zu   | %6ld, %5zu, %5zu\n", quantum,
                static_cast<long>(direct), static_cast<long>(tapped), tappedIn, tappedKilled,
                static_cast<long>(looped), loopedIn, loopedKilled);
    std::fflush(stdout);
  }
}

void printIdle(const Settings& settings) {
  PrivateSession session;
  session.createSinks();
  ProgramUnderTest plemora(session);
  const auto wakeUpsPerSecond = [&] {
    // What the server announces on its way to rest is no idling of ours.
    session.waitForState("first", "suspended", 15);
    session.waitForState("second", "suspended", 15);
    usleep(3000000);
    const auto before = plemora.wakeUps();
    usleep(static_cast<useconds_t>(2 * settings.seconds * 1e6));
    return static_cast<double>(plemora.wakeUps() - before) / (2 * settings.seconds);
  };
  std::printf("\nResident memory without a tap: %.1f MB\n",
              static_cast<double>(plemora.residentKiB()) / 1024);
  std::printf("Wake-ups per second while nothing plays: %.2f\n", wakeUpsPerSecond());
  auto apps = startApps(session, 1, Signal::sine(440, 0.1));
  turnDown(plemora, nameOf(0));
  apps[0]->pause();
  std::printf("Wake-ups per second while a tapped app is paused: %.2f\n", wakeUpsPerSecond());
  apps.clear();

  double worst = 0;
  for (int round = 0; round < 10; ++round) {
    TonePlayer app(session,
                   {.name = "late" + std::to_string(round), .signal = Signal::sine(440, 0.1)});
    session.waitForState(app.name(), "running");
    const auto start = std::chrono::steady_clock::now();
    plemora.waitForApp(app.name());
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    worst = std::max(worst, took.count());
  }
  std::printf("An app is in the list %.0f ms after its first sound, at the latest of 10\n",
              worst * 1000);
}

std::vector<std::string> words(const std::string& text) {
  std::vector<std::string> result;
  std::istringstream in(text);
  for (std::string item; std::getline(in, item, ',');) {
    result.push_back(item);
  }
  return result;
}

std::vector<int> numbers(const std::string& text) {
  std::vector<int> result;
  for (const std::string& word : words(text)) {
    result.push_back(std::stoi(word));
  }
  return result;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    Settings settings;
    for (int i = 1; i + 1 < argc; i += 2) {
      const std::string option = argv[i];
      if (option == "--seconds") {
        settings.seconds = std::stod(argv[i + 1]);
      } else if (option == "--rounds") {
        settings.rounds = std::stoi(argv[i + 1]);
      } else if (option == "--apps") {
        settings.apps = numbers(argv[i + 1]);
      } else if (option == "--quanta") {
        settings.quanta = numbers(argv[i + 1]);
      } else if (option == "--clients") {
        settings.clients = words(argv[i + 1]);
        for (const std::string& kind : settings.clients) {
          const auto known = Settings().clients;
          if (std::find(known.begin(), known.end(), kind) == known.end()) {
            throw std::runtime_error("--clients: \"" + kind +
                                     "\" is none of native, pulse, shared");
          }
        }
      } else if (option == "--only-costs") {
        settings.onlyCosts = argv[i + 1] == std::string("yes");
      } else {
        std::fprintf(stderr,
                     "usage: tap_compare [--seconds N] [--rounds N] [--apps 1,8] "
                     "[--quanta 1024,256] [--clients native,pulse,shared] "
                     "[--only-costs yes]\n");
        return 2;
      }
    }
    if (!settings.onlyCosts) {
      printPaths(settings);
      printIdle(settings);
    }
    printCosts(settings);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "tap_compare: %s\n", error.what());
    return 1;
  }
}
