#include "support/pipewire/player.h"

#include <chrono>
#include <filesystem>
#include <sstream>
#include <utility>

#include "support/pipewire/private_session.h"

namespace plemora::rig {

namespace {

namespace fs = std::filesystem;

ChildOptions playerOptions(const PrivateSession& session, PlayerKind kind,
                           const std::string& file) {
  ChildOptions options;
  switch (kind) {
    case PlayerKind::pwPlay:
      options.arguments = {"pw-play", file};
      break;
    case PlayerKind::paplay:
      options.arguments = {"paplay", file};
      break;
    case PlayerKind::mpvPipeWire:
    case PlayerKind::mpvPulse:
      options.arguments = {
          "mpv",        "--no-config",
          "--no-video", "--no-terminal",
          "--loop=inf", kind == PlayerKind::mpvPulse ? "--ao=pulse" : "--ao=pipewire",
          file};
      break;
  }
  options.environment = session.environment();
  options.logFile = session.directory() + "/players.log";
  return options;
}

/// A copy of the tone player under the name of the app that it plays: what tells apps without a
/// desktop entry apart is their program.
std::string programFor(const PrivateSession& session, const std::string& name) {
  const fs::path folder = fs::path(session.directory()) / "bin";
  fs::create_directories(folder);
  const fs::path program = folder / name;
  if (!fs::exists(program)) {
    fs::copy_file(PLEMORA_TONE_PLAYER, program);
  }
  return program.string();
}

}  // namespace

std::string programOf(PlayerKind kind) {
  switch (kind) {
    case PlayerKind::pwPlay:
      return "pw-play";
    case PlayerKind::paplay:
      return "paplay";
    case PlayerKind::mpvPipeWire:
    case PlayerKind::mpvPulse:
      return "mpv";
  }
  return {};
}

Player::Player(PrivateSession& session, PlayerKind kind, const std::string& file)
    : ChildProcess(playerOptions(session, kind, file)) {}

TonePlayer::TonePlayer(PrivateSession& session, ToneOptions options)
    : options_(std::move(options)) {
  ChildOptions child;
  child.arguments = {programFor(session, options_.name), options_.name, options_.signal.text(),
                     std::to_string(options_.channels), std::to_string(options_.rate)};
  if (!options_.target.empty()) {
    child.arguments.push_back(options_.target);
  }
  child.environment = session.environment();
  child.logFile = session.directory() + "/players.log";
  child.readable = true;
  process_ = std::make_unique<ChildProcess>(child);
  for (int i = 0; i < options_.streams; ++i) {
    open();
  }
}

int TonePlayer::open(const std::string& node) {
  process_->writeLine("open " + node);
  states_.emplace_back("unconnected");
  return static_cast<int>(states_.size()) - 1;
}

void TonePlayer::close(int stream) {
  process_->writeLine("close " + std::to_string(stream));
}
void TonePlayer::pause(int stream) {
  process_->writeLine("pause " + std::to_string(stream));
}
void TonePlayer::resume(int stream) {
  process_->writeLine("resume " + std::to_string(stream));
}

bool TonePlayer::waitFor(int stream, const std::string& state, double seconds) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  while (states_.at(static_cast<std::size_t>(stream)) != state) {
    const std::chrono::duration<double> left = deadline - std::chrono::steady_clock::now();
    const auto line = left.count() > 0 ? process_->readLine(left.count()) : std::nullopt;
    if (!line) {
      return false;
    }
    std::istringstream words(*line);
    std::size_t number = 0;
    std::string now;
    if (words >> number >> now && number < states_.size()) {
      states_[number] = now;
    }
  }
  return true;
}

bool TonePlayer::waitUntilStreaming() {
  bool all = true;
  for (std::size_t i = 0; i < states_.size(); ++i) {
    all = all && waitFor(static_cast<int>(i), "streaming");
  }
  return all;
}

}  // namespace plemora::rig
