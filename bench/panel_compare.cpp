// Measures, side by side in one run on a private desktop, Plemora's panel against the mixers that
// people use on such a desktop: how soon something is seen, what it keeps in memory, what it costs
// while a slider is dragged and while nothing is done.
//   panel_compare [--seconds N] [--starts N] [--clicks N] [--bin FOLDER] [--pictures FOLDER]
//                 [--maps FOLDER] [--others no]
// The maps are what the kernel says of each piece of Plemora's memory, before and after opening.
// Every time is that of the X server: what was drawn into the window, and when the screen showed
// it. The other mixers have no icon: starting them is the click that opens them.

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/pipewire/player.h"
#include "support/pipewire/private_session.h"
#include "support/pipewire/program_under_test.h"
#include "support/wait.h"
#include "watched_desktop.h"

namespace {

using namespace plemora::rig;
using Clock = std::chrono::steady_clock;

struct Settings {
  double seconds = 5;
  int starts = 5;
  int clicks = 20;
  std::string bin = PLEMORA_BIN_DIR;
  std::string pictures = {};
  std::string maps = {};
  bool withOthers = true;
};

/// What /proc says of a process at a moment.
struct Sample {
  double cpu = 0;             ///< ms
  std::size_t mainWakes = 0;  ///< of its main thread
  std::size_t otherWakes = 0;
};

Sample sampleOf(pid_t pid) {
  Sample sample;
  sample.cpu = cpuMilliseconds(pid);
  for (const auto& task :
       std::filesystem::directory_iterator("/proc/" + std::to_string(pid) + "/task")) {
    std::ifstream in(task.path() / "status");
    std::size_t wakes = 0;
    for (std::string word; in >> word;) {
      if (word == "voluntary_ctxt_switches:") {
        in >> wakes;
      }
    }
    (task.path().filename() == std::to_string(pid) ? sample.mainWakes : sample.otherWakes) += wakes;
  }
  return sample;
}

/// Resident memory that is no file's, of which other programs may have pages in common.
double ownMegabytes(pid_t pid) {
  std::ifstream in("/proc/" + std::to_string(pid) + "/status");
  double kibibytes = 0;
  for (std::string word; in >> word;) {
    if (word == "RssAnon:") {
      in >> kibibytes;
    }
  }
  return kibibytes / 1024;
}

double milliseconds(Instant from, Instant to) {
  return std::chrono::duration<double, std::milli>(to - from).count();
}

/// One program's side of the table.
class Measured {
 public:
  Measured(const Settings& settings, PrivateSession& session, WatchedDesktop& desktop,
           std::vector<std::string> arguments)
      : settings_(settings), desktop_(desktop), name_(arguments.front()) {
    name_ = std::filesystem::path(name_).filename();
    options_.arguments = std::move(arguments);
    options_.environment = session.environment();
    options_.environment.push_back(std::string("DISPLAY=") + getenv("DISPLAY"));
    options_.environment.push_back("XDG_CURRENT_DESKTOP=LXQt");
    options_.logFile = session.directory() + "/mixers.log";
  }

  void start() { process_ = std::make_unique<ChildProcess>(options_); }
  void stop() { process_.reset(); }
  pid_t pid() const { return process_->pid(); }
  const std::string& name() const { return name_; }

  /// Over some seconds of rest, or of what the action does a sixtieth of a second after the other.
  void printCost(const std::string& what, const std::function<void(double)>& action = {}) {
    sleepFor(action ? 0.3 : 2);
    const Sample before = sampleOf(pid());
    const double serverBefore = cpuMilliseconds(desktop_.server());
    const auto start = Clock::now();
    double passed = 0;
    while (passed < settings_.seconds) {
      if (action) {
        action(passed / settings_.seconds);
        sleepFor(1.0 / 60);
      } else {
        sleepFor(settings_.seconds);
      }
      passed = milliseconds(start, Clock::now()) / 1000;
    }
    const Sample after = sampleOf(pid());
    const double server = cpuMilliseconds(desktop_.server()) - serverBefore;
    std::printf("%-15s %-30s CPU %6.2f %%, X server %5.2f %%, wake-ups/s %6.1f main, %6.1f other\n",
                name_.c_str(), what.c_str(), (after.cpu - before.cpu) / passed / 10,
                server / passed / 10,
                static_cast<double>(after.mainWakes - before.mainWakes) / passed,
                static_cast<double>(after.otherWakes - before.otherWakes) / passed);
    std::fflush(stdout);
  }

  void printMemory(const std::string& what) {
    std::printf("%-15s %-30s %.1f MB resident, %.1f MB of it no file's\n", name_.c_str(),
                what.c_str(), static_cast<double>(residentKiBOf(pid())) / 1024,
                ownMegabytes(pid()));
    std::fflush(stdout);
    if (!settings_.maps.empty()) {
      std::ofstream(settings_.maps + "/" + name_ + "-" + what + ".smaps")
          << std::ifstream("/proc/" + std::to_string(pid()) + "/smaps").rdbuf();
    }
  }

  void printTimes(const std::string& what, std::vector<double> drawn, std::vector<double> seen) {
    std::sort(drawn.begin(), drawn.end());
    std::sort(seen.begin(), seen.end());
    std::printf(
        "%-15s %-30s drawn after %.1f ms (%.1f to %.1f), on the screen after %.1f ms (%.1f to "
        "%.1f)\n",
        name_.c_str(), what.c_str(), drawn[drawn.size() / 2], drawn.front(), drawn.back(),
        seen[seen.size() / 2], seen.front(), seen.back());
    std::fflush(stdout);
  }

  /// Drags along the line between two places of the window; throws when that changed no volume.
  void printDrag(const Area& window, double left, double right, double y,
                 const std::function<std::string()>& volumes) {
    const auto xAt = [&](double part) {
      // Three times there and back.
      const double wave = 0.5 - 0.5 * std::cos(part * 6 * M_PI);
      return static_cast<int>(window.x + left + (right - left) * wave);
    };
    const int row = static_cast<int>(window.y + y);
    const std::string before = volumes();
    desktop_.movePointer(xAt(0.17), row);
    sleepFor(0.2);
    desktop_.button(true);
    printCost("slider dragged", [&](double part) { desktop_.movePointer(xAt(part), row); });
    desktop_.movePointer(xAt(0.08), row);
    sleepFor(0.3);
    desktop_.button(false);
    sleepFor(0.3);
    picture("dragged");
    if (volumes() == before) {
      throw std::runtime_error(name_ + ": dragging changed no volume");
    }
  }

  void picture(const std::string& what) {
    if (!settings_.pictures.empty()) {
      desktop_.save(settings_.pictures + "/" + name_ + "-" + what + ".ppm");
    }
  }

  static void sleepFor(double seconds) { usleep(static_cast<useconds_t>(seconds * 1e6)); }

  /// What a command writes.
  std::string output(std::vector<std::string> arguments) {
    ChildOptions options = options_;
    options.arguments = std::move(arguments);
    options.readable = true;
    return ChildProcess(options).readAll(5);
  }

 private:
  const Settings& settings_;
  WatchedDesktop& desktop_;
  std::string name_;
  ChildOptions options_;
  std::unique_ptr<ChildProcess> process_;
};

void measurePlemora(const Settings& settings, PrivateSession& session, WatchedDesktop& desktop) {
  Measured plemora(settings, session, desktop, {settings.bin + "/plemora"});
  std::vector<double> started;
  std::vector<double> firstDrawn;
  std::vector<double> firstSeen;
  std::optional<FirstFrame> frame;
  std::optional<std::pair<Area, Instant>> icon;
  const auto click = [&] {
    const auto start = Clock::now();
    frame = desktop.frameAfter(
        [&] { desktop.click(icon->first.x + icon->first.width / 2, icon->first.height / 2); });
    if (!frame) {
      throw std::runtime_error("no panel after the click");
    }
    return start;
  };
  const auto close = [&] {
    desktop.pressEscape();
    if (!eventually(5, [&] { return !desktop.isShown(frame->window); })) {
      throw std::runtime_error("the panel does not close");
    }
  };
  // Several starts, since each has one first click only.
  for (int round = 0; round < settings.starts; ++round) {
    Instant start;
    plemora.stop();
    icon = desktop.iconAfter([&] {
      start = Clock::now();
      plemora.start();
    });
    if (!icon) {
      throw std::runtime_error("no icon in the tray\n" + session.logs());
    }
    started.push_back(milliseconds(start, icon->second));
    Measured::sleepFor(4);
    if (round == settings.starts - 1) {
      plemora.printMemory("before the first opening");
      plemora.printCost("idle, never opened");
    }
    Instant clicked;
    std::optional<FirstFrame> first;
    frame = desktop.frameAfter([&] {
      clicked = Clock::now();
      desktop.click(icon->first.x + icon->first.width / 2, icon->first.height / 2);
    });
    if (!frame) {
      throw std::runtime_error("no panel after the first click\n" + session.logs());
    }
    firstDrawn.push_back(milliseconds(clicked, frame->drawn));
    firstSeen.push_back(milliseconds(clicked, frame->seen));
  }
  plemora.printTimes("start to icon", started, started);
  plemora.printTimes("first click", firstDrawn, firstSeen);
  Measured::sleepFor(1);
  plemora.picture("open");
  plemora.printMemory("open");
  plemora.printCost("idle, open, no level shown");
  close();
  plemora.printMemory("closed again");
  plemora.printCost("idle, closed again");
  std::vector<double> drawn;
  std::vector<double> seen;
  for (int i = 0; i < settings.clicks; ++i) {
    Instant clicked;
    frame = desktop.frameAfter([&] {
      clicked = Clock::now();
      desktop.click(icon->first.x + icon->first.width / 2, icon->first.height / 2);
    });
    if (!frame) {
      throw std::runtime_error("no panel after a later click");
    }
    drawn.push_back(milliseconds(clicked, frame->drawn));
    seen.push_back(milliseconds(clicked, frame->seen));
    Measured::sleepFor(0.5);
    close();
  }
  plemora.printTimes("later clicks", drawn, seen);
  click();
  Measured::sleepFor(0.5);
  plemora.printDrag(frame->place, 90, 220, 158, [&] {
    return plemora.output({settings.bin + "/plemoractl", "list"});
  });
  plemora.printCost("idle, open, a level shown");
  plemora.printMemory("open, after all that");
  close();
  plemora.printCost("idle, closed, an app tapped");
  plemora.printMemory("closed, after all that");
}

void measureOther(const Settings& settings, PrivateSession& session, WatchedDesktop& desktop,
                  std::vector<std::string> arguments, double left, double right, double y) {
  Measured mixer(settings, session, desktop, std::move(arguments));
  std::vector<double> drawn;
  std::vector<double> seen;
  std::optional<FirstFrame> frame;
  for (int round = 0; round < 6; ++round) {
    Instant start;
    mixer.stop();
    frame = desktop.frameAfter([&] {
      start = Clock::now();
      mixer.start();
    });
    if (!frame) {
      throw std::runtime_error("no window of " + mixer.name() + "\n" + session.logs());
    }
    if (round > 0) {  // the first reads it from the disk
      drawn.push_back(milliseconds(start, frame->drawn));
      seen.push_back(milliseconds(start, frame->seen));
    }
    Measured::sleepFor(1);
  }
  mixer.printTimes("start to window", drawn, seen);
  mixer.picture("open");
  mixer.printMemory("open");
  mixer.printCost("idle, open");
  mixer.printDrag(frame->place, left, right, y, [&] {
    return mixer.output({"pactl", "list", "sink-inputs"});
  });
  mixer.printMemory("open, after all that");
}

}  // namespace

int main(int argc, char** argv) {
  try {
    Settings settings;
    for (int i = 1; i + 1 < argc; i += 2) {
      const std::string option = argv[i];
      if (option == "--seconds") {
        settings.seconds = std::stod(argv[i + 1]);
      } else if (option == "--starts") {
        settings.starts = std::stoi(argv[i + 1]);
      } else if (option == "--clicks") {
        settings.clicks = std::stoi(argv[i + 1]);
      } else if (option == "--bin") {
        settings.bin = argv[i + 1];
      } else if (option == "--pictures") {
        settings.pictures = argv[i + 1];
      } else if (option == "--maps") {
        settings.maps = argv[i + 1];
      } else if (option == "--others") {
        settings.withOthers = std::string(argv[i + 1]) != "no";
      } else {
        std::fprintf(stderr,
                     "usage: panel_compare [--seconds N] [--starts N] [--clicks N] [--bin FOLDER] "
                     "[--pictures FOLDER] [--maps FOLDER] [--others no]\n");
        return 2;
      }
    }
    PrivateSession session;
    session.createSinks();
    const TonePlayer one(session, {.name = "one", .signal = Signal::sine(440, 0.1)});
    const TonePlayer two(session, {.name = "two", .signal = Signal::sine(330, 0.1)});
    session.waitForLink("one", "first");
    session.waitForLink("two", "first");
    WatchedDesktop desktop(session);
    measurePlemora(settings, session, desktop);
    if (settings.withOthers) {
      measureOther(settings, session, desktop, {"pavucontrol", "--tab=1"}, 100, 242, 230);
      measureOther(settings, session, desktop, {"pavucontrol-qt", "--tab=1"}, 100, 413, 248);
    }
  } catch (const std::exception& error) {
    std::fprintf(stderr, "panel_compare: %s\n", error.what());
    return 1;
  }
}
