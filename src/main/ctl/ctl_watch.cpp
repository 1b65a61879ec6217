#include <sys/ioctl.h>
#include <unistd.h>

#include <QCoreApplication>
#include <cstdio>

#include "main/ctl/ctl_program.h"
#include "main/process/ending_signals.h"

namespace plemora {

namespace {

// Takes the whole terminal as long as it lives and gives it back as it was.
class LiveScreen {
 public:
  // The alternate screen, no cursor, no wrapping of long lines.
  LiveScreen() { write("\x1b[?1049h\x1b[?25l\x1b[?7l"); }
  ~LiveScreen() { write("\x1b[?7h\x1b[?25h\x1b[?1049l"); }
  LiveScreen(const LiveScreen&) = delete;
  LiveScreen& operator=(const LiveScreen&) = delete;

  /// Over the picture before, line by line, so that nothing flickers.
  void show(const std::string& text) {
    std::string frame = "\x1b[H";
    for (const char byte : text) {
      frame += byte == '\n' ? std::string("\x1b[K\r\n") : std::string(1, byte);
    }
    write(frame + "\x1b[J");
  }

 private:
  static void write(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fflush(stdout);
  }
};

class LiveWatch {
 public:
  explicit LiveWatch(const OutputStyle& style) : style_(style) {}

  void setState(const MixerState& state) {
    state_ = state;
    show();
  }
  void setLevels(const std::vector<LevelReport>& levels) {
    levels_ = levels;
    show();
  }

 private:
  void show() {
    winsize size = {};
    const bool isKnown = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    style_.width = isKnown ? size.ws_col : 80;
    screen_.show(watchText(state_, levels_, style_, isKnown ? size.ws_row : 24) +
                 "\nCtrl-C ends this view.");
  }

  OutputStyle style_;
  LiveScreen screen_;
  MixerState state_;
  std::vector<LevelReport> levels_;
};

// Runs the main loop until a signal comes (true) or the mixer ends (false).
bool runUntilEnd(bool& mixerEnded) {
  const EndingSignals ending([] { QCoreApplication::quit(); });
  if (!mixerEnded) {
    QCoreApplication::exec();
  }
  return !mixerEnded;
}

bool watchLive(MixerClient& client, const OutputStyle& style) {
  bool mixerEnded = false;
  LiveWatch watch(style);
  watch.setState(
      client.watch({[&](const MixerState& state) { watch.setState(state); },
                    [&](const std::vector<LevelReport>& levels) { watch.setLevels(levels); },
                    [&] {
                      mixerEnded = true;
                      QCoreApplication::quit();
                    }}));
  return runUntilEnd(mixerEnded);
}

bool watchLines(MixerClient& client) {
  bool mixerEnded = false;
  MixerState last;
  const auto report = [&](const MixerState& state) {
    const std::string text = changesText(last, state);
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fflush(stdout);
    last = state;
  };
  const MixerState now = client.watch({report, {}, [&] {
                                         mixerEnded = true;
                                         QCoreApplication::quit();
                                       }});
  // At first the apps alone: that devices are there is no change.
  last = now;
  last.apps.clear();
  report(now);
  return runUntilEnd(mixerEnded);
}

}  // namespace

CtlExit watchMixer(MixerClient& client, const OutputStyle& style, bool isLive) {
  const bool bySignal = isLive ? watchLive(client, style) : watchLines(client);
  if (!bySignal) {
    printError("plemora has ended");
    return CtlExit::notRunning;
  }
  return CtlExit::success;
}

}  // namespace plemora
