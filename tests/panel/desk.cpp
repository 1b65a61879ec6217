#include "panel/desk.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "support/wait.h"

namespace plemora::rig {

namespace {

constexpr double patience = 5;  // seconds
constexpr int panelWidth = 308;
constexpr int panelGap = 6;
constexpr int panelMargin = 8;
constexpr unsigned tabKey = 0xff09;

constexpr const char* barSettings = R"(panels=panel1
[panel1]
alignment=-1
animation-duration=0
desktop=0
hidable=false
iconSize=22
lineCount=1
lockPanel=true
panelSize=30
plugins=spacer, statusnotifier
position=Top
width=100
width-percent=true
[spacer]
type=spacer
expandable=true
[statusnotifier]
type=statusnotifier
alignment=Right
)";

}  // namespace

bool Control::is(const std::string& state) const {
  return std::ranges::find(states, state) != states.end();
}

Desk::Desk(const DeskSetup& setup)
    : host_(setup.host),
      display_({setup.name, setup.hasWindowManager, setup.hasCompositingManager}) {
  const std::filesystem::path settings = session_.directory() + "/config/lxqt";
  std::filesystem::create_directories(settings);
  std::ofstream(settings / "panel.conf") << barSettings;
  if (setup.isFirstStart) {
    std::filesystem::remove(settingsFile());
  }
  session_.createSinks(1024);
  accessibility_ = std::make_unique<ChildProcess>(
      ChildOptions{{"/usr/libexec/at-spi-bus-launcher", "--launch-immediately"},
                   environment(),
                   session_.directory() + "/accessibility.log"});
  if (host_ != TrayHost::none) {
    startTray();
  }
}

Desk::~Desk() = default;

std::vector<std::string> Desk::environment() const {
  auto all = session_.environment();
  all.push_back(std::string("DISPLAY=") + std::getenv("DISPLAY"));
  all.emplace_back("QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1");
  return all;
}

void Desk::startTray() {
  ChildOptions options;
  options.arguments = host_ == TrayHost::lxqtPanel
                          ? std::vector<std::string>{"lxqt-panel"}
                          : std::vector<std::string>{"trayer",  "--edge",
                                                     "top",     "--align",
                                                     "right",   "--height",
                                                     "26",      "--heighttype",
                                                     "pixel",   "--widthtype",
                                                     "request", "--SetDockType",
                                                     "true",    "--SetPartialStrut",
                                                     "true"};
  options.environment = environment();
  options.logFile = session_.directory() + "/tray.log";
  tray_ = std::make_unique<ChildProcess>(options);
  if (!eventually(patience, [this] { return !bar().isEmpty(); }) || !tray_->running()) {
    throw std::runtime_error("the bar of icons did not come up:\n" + session_.logs());
  }
}

QRect Desk::bar() {
  for (const auto window : display_.stack()) {
    const QRect frame = display_.frameOf(window);
    if (display_.isShown(window) && frame.y() == 0 && frame.height() >= 20 &&
        frame.height() <= 40 && frame.right() >= 700) {
      return frame;
    }
  }
  return {};
}

QRect Desk::icon() {
  const QRect place = bar();
  const QRect square(place.right() + 1 - place.height(), 0, place.height(), place.height());
  // trayer has a border of its own, which the icon knows; a bus item takes the whole bar for it.
  return host_ == TrayHost::trayer ? square.adjusted(1, 1, -1, -1) : square;
}

bool Desk::showsIcon() {
  return eventually(patience, [this] {
    const QRect place = icon().adjusted(4, 4, -4, -4);
    // A bar that has just come may still be on its way onto the screen.
    if (bar().isEmpty() || !display_.reaches(place)) {
      return false;
    }
    const unsigned corner = display_.pixel(place.topLeft());
    for (int x = place.left(); x <= place.right(); ++x) {
      const unsigned middle = display_.pixel({x, place.center().y()});
      for (int shift = 0; shift < 24; shift += 8) {
        if (std::abs(static_cast<int>(corner >> shift & 255U) -
                     static_cast<int>(middle >> shift & 255U)) > 60) {
          return true;
        }
      }
    }
    return false;
  });
}

std::string Desk::settings() const {
  std::ostringstream text;
  text << std::ifstream(settingsFile()).rdbuf();
  return text.str();
}

void Desk::startProgram(bool isService, const std::vector<std::string>& more) {
  auto variables = isService ? std::vector<std::string>{} : environment();
  variables.insert(variables.end(), more.begin(), more.end());
  plemora_ = std::make_unique<ProgramUnderTest>(session_, std::vector<std::string>{}, variables);
  reader_ = std::make_unique<ChildProcess>(
      ChildOptions{{PLEMORA_SCREEN_READER, std::to_string(plemora_->process().pid())},
                   environment(),
                   session_.directory() + "/reader.log",
                   true});
}

void Desk::startAndKill(double seconds) {
  ChildOptions options;
  options.arguments = {PLEMORA_PROGRAM};
  options.environment = environment();
  options.logFile = session_.directory() + "/killed.log";
  ChildProcess child(options);
  child.wait(seconds);
  child.kill();
}

std::optional<int> Desk::startAgain(const std::vector<std::string>& arguments) {
  ChildOptions options;
  options.arguments = {PLEMORA_PROGRAM};
  options.arguments.insert(options.arguments.end(), arguments.begin(), arguments.end());
  options.environment = environment();
  options.logFile = session_.directory() + "/again.log";
  return ChildProcess(options).wait(patience);
}

std::vector<QRect> Desk::windows() {
  const auto process = static_cast<std::uint32_t>(plemora_->process().pid());
  std::vector<QRect> frames;
  for (const auto window : display_.stack()) {
    if (display_.isShown(window) &&
        display_.property(window, "_NET_WM_PID") == std::vector<std::uint32_t>{process}) {
      frames.push_back(display_.frameOf(window));
    }
  }
  return frames;
}

std::optional<QRect> Desk::panel() {
  for (const QRect& frame : windows()) {
    if (frame.width() == panelWidth) {
      return frame;
    }
  }
  return std::nullopt;
}

QRect Desk::placeUnderIcon(int height) {
  const QRect hangsFrom = icon();
  const int right = bar().right() + 1 - panelMargin;
  return {right - panelWidth, hangsFrom.bottom() + 1 + panelGap, panelWidth, height};
}

bool Desk::opens() {
  return eventually(patience, [this] { return panel().has_value(); });
}

bool Desk::closes() {
  return eventually(patience, [this] { return !panel().has_value(); });
}

testing::AssertionResult Desk::restsUnderIcon(int height) {
  const bool rests = eventually(patience, [&] { return panel() == placeUnderIcon(height); });
  const auto text = [](const QRect& frame) {
    return std::to_string(frame.width()) + "x" + std::to_string(frame.height()) + "+" +
           std::to_string(frame.x()) + "+" + std::to_string(frame.y());
  };
  return (rests ? testing::AssertionSuccess() : testing::AssertionFailure())
         << "the panel is at " << text(panel().value_or(QRect())) << ", its place is "
         << text(placeUnderIcon(height));
}

std::vector<Control> Desk::controls() {
  std::vector<Control> all;
  reader_->writeLine("list");
  const auto line = reader_->readLine(patience);
  if (!line) {
    throw std::runtime_error("the screen reader ended:\n" + session_.logs());
  }
  for (const auto& one : nlohmann::json::parse(*line)) {
    const auto frame = one.at("frame").get<std::vector<int>>();
    all.push_back({one.at("name"), one.at("role"), one.at("description"), one.at("value"),
                   QRect(frame.at(0), frame.at(1), frame.at(2), frame.at(3)),
                   one.at("states").get<std::vector<std::string>>()});
  }
  return all;
}

Control Desk::control(const std::string& name, const std::string& role) {
  std::optional<Control> found;
  // A control that moves still is clicked beside.
  const bool rests = eventually(patience, [&] {
    const auto before = std::exchange(found, std::nullopt);
    for (const Control& one : controls()) {
      if (one.name == name && (role.empty() || one.role == role) && one.is("showing") &&
          (!found || one.frame.y() < found->frame.y())) {
        found = one;
      }
    }
    return before && found && before->frame == found->frame;
  });
  if (!rests) {
    std::string others;
    for (const Control& one : controls()) {
      others += one.is("showing") ? "  " + one.role + " \"" + one.name + "\"\n" : "";
    }
    throw std::runtime_error("the program shows no control \"" + name + "\", but\n" + others +
                             session_.logs());
  }
  return *found;
}

bool Desk::shows(const std::string& name) {
  return eventually(patience, [&] {
    const auto all = controls();
    return std::ranges::any_of(
        all, [&](const Control& one) { return one.name == name && one.is("showing"); });
  });
}

bool Desk::showsNothing() {
  return eventually(patience, [&] {
    const auto all = controls();
    return std::ranges::none_of(all, [](const Control& one) { return one.is("showing"); });
  });
}

bool Desk::tabTo(const std::string& name) {
  constexpr int mostSteps = 12;
  const auto hasKeys = [&] {
    const auto all = controls();
    return std::ranges::any_of(
        all, [&](const Control& one) { return one.name == name && one.is("focused"); });
  };
  for (int step = 0; step < mostSteps && !eventually(0.3, hasKeys); ++step) {
    display_.pressKey(tabKey);
  }
  return hasKeys();
}

bool Desk::act(const std::string& action, const std::string& name) {
  reader_->writeLine("do " + action + " " + name);
  return reader_->readLine(patience) == "true";
}

std::unique_ptr<TonePlayer> Desk::play(const std::string& name, const Signal& signal) {
  auto player = std::make_unique<TonePlayer>(session_, ToneOptions{.name = name, .signal = signal});
  if (!player->waitUntilStreaming() || !session_.waitForLink(name, "first") ||
      !plemora_->waitForApp(name)) {
    throw std::runtime_error(name + " is not listed\n" + session_.logs());
  }
  return player;
}

AppRow Desk::row(const std::string& name) {
  return plemora_->waitForApp(name).value_or(AppRow{});
}

bool hears(SinkRecorder& recorder, double value) {
  return eventually(patience, [&] { return std::abs(recorder.next(1)[0].back() - value) < 0.001; });
}

}  // namespace plemora::rig
