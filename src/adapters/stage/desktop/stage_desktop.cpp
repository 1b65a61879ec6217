#include "adapters/stage/desktop/stage_desktop.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "adapters/stage/desktop/stage_outputs.h"

namespace plemora {

namespace {

constexpr double slice = 1.0 / 120;  // seconds; queues other than the main one run in between
constexpr std::uint32_t audioFrames = 1024;
constexpr double audioInterval = audioFrames / 48000.0;  // seconds
constexpr double menuBarHeight = 24;

}  // namespace

StageDesktop::StageDesktop(PreferencePair preferencePair, const StageDesktopOptions& options)
    : preferences(preferencePair),
      program(workspace, windows),
      menuBar(screens, numbers, [this] { return std::pair(program.pid(), program.name()); }),
      controlCenter({mainQueue, clock, screens, preferences.system, workspace, menuBar,
                     accessibility, numbers, extensions, hal}),
      settings({screens, preferences.system, workspace, numbers, accessibility, consent, hal,
                program, controlCenter}),
      dock(screens, workspace, program, numbers),
      players(hal, workspace, numbers),
      prompt({consent, accessibility, screens, program, settings}, numbers),
      input(windowServer, [this] { return program.pid(); }),
      fileDrag(input, [this](const Point& location, const std::string& path) {
        return drop(location, path);
      }) {
  windows.nextNumber = [this] { return numbers.next(); };
  screens.set({makeScreen(1, {0, 0, 1440, 900}, 2, true)});
  // The menu bar comes first: a menu that is open takes presses before everybody else.
  for (StageWindowOwner* owner :
       {static_cast<StageWindowOwner*>(&menuBar), static_cast<StageWindowOwner*>(&program),
        static_cast<StageWindowOwner*>(&controlCenter), static_cast<StageWindowOwner*>(&settings),
        static_cast<StageWindowOwner*>(&dock), static_cast<StageWindowOwner*>(&players),
        static_cast<StageWindowOwner*>(&prompt)}) {
    windowServer.addOwner(*owner);
  }
  workspace.handleScheme("x-apple.systempreferences",
                         [this](const std::string& url) { return settings.openURL(url); });
  controlCenter.launch();
  if (options.runsAudio) {
    audio_ = mainQueue.every(audioInterval, [this] { runAudio(); });
  }
}

StageDesktop::~StageDesktop() = default;

Screen StageDesktop::makeScreen(int id, const Rect& frame, double scale, bool hasDock) {
  const double below = hasDock ? StageDock::margin + StageDock::height + StageDock::margin : 0;
  return {id,
          frame,
          {frame.x, frame.y + below, frame.width, frame.height - menuBarHeight - below},
          scale,
          60};
}

void StageDesktop::runAudio() {
  const bool isSomebodyPlaying = std::ranges::any_of(players.players(), &StagePlayer::isPlaying);
  if (isSomebodyPlaying || hal.runningProcs() > 0) {
    hal.step(audioFrames);
  }
}

void StageDesktop::advance(double seconds) {
  const double end = clock.mediaTime() + seconds;
  settle();
  while (clock.mediaTime() < end) {
    mainQueue.advance(std::min(slice, end - clock.mediaTime()));
    settle();
  }
}

void StageDesktop::settle() {
  do {
    mainQueue.drain();
  } while (queues.runAll() > 0);
}

void StageDesktop::movePointer(const Point& location) {
  input.movePointer(location);
  settle();
}

void StageDesktop::press(const Point& location, StageButton button) {
  input.movePointer(location);
  input.press(button);
  settle();
}

void StageDesktop::release(StageButton button) {
  input.release(button);
  settle();
}

void StageDesktop::click(const Point& location, StageButton button) {
  press(location, button);
  release(button);
}

void StageDesktop::drag(const Point& from, const Point& to, double seconds) {
  constexpr double interval = 1.0 / 60;
  press(from);
  const int steps = std::max(1, static_cast<int>(std::lround(seconds / interval)));
  for (int step = 1; step <= steps; ++step) {
    const double part = static_cast<double>(step) / steps;
    movePointer({from.x + (to.x - from.x) * part, from.y + (to.y - from.y) * part});
    advance(seconds / steps);
  }
  release();
}

void StageDesktop::scroll(const Point& location, double dx, double dy, int steps) {
  input.movePointer(location);
  input.scroll(dx, dy, steps);
  settle();
}

void StageDesktop::key(int keyCode, const std::string& text, unsigned modifiers) {
  input.key(keyCode, text, modifiers);
  settle();
}

void StageDesktop::type(const std::string& text) {
  // Lead bytes of UTF-8 are those that do not begin with the bits 10.
  for (std::size_t begin = 0; begin < text.size();) {
    std::size_t end = begin + 1;
    while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) {
      ++end;
    }
    key(0, text.substr(begin, end - begin));
    begin = end;
  }
}

bool StageDesktop::clickTile(const std::string& id) {
  const StageTile* tile = controlCenter.grid().tile(id);
  if (!controlCenter.isOpen() || tile == nullptr || !controlCenter.isShown(*tile)) {
    return false;
  }
  const Rect frame = controlCenter.panel().tile(*tile);
  click({frame.midX(), frame.midY()});
  return true;
}

bool StageDesktop::clickMenuItem(const std::string& title) {
  const auto titles = menuBar.menu().titles();
  const auto found = std::ranges::find(titles, title);
  if (title.empty() || found == titles.end()) {
    return false;
  }
  const Rect frame = menuBar.menu().itemFrame(static_cast<std::size_t>(found - titles.begin()));
  click({frame.midX(), frame.midY()});
  return true;
}

bool StageDesktop::drop(const Point& location, const std::string& path) {
  const auto hit = windowServer.hit(location);
  return hit && hit->kind == StageWindowKind::settings && settings.drop(path);
}

bool StageDesktop::pull(const std::string& uid) {
  for (const AudioObjectID id : stageOutputs(hal)) {
    if (hal.device(id).uid == uid) {
      hal.removeDevice(id);
      settle();
      return true;
    }
  }
  return false;
}

}  // namespace plemora
