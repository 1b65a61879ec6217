#include "adapters/stage/desktop/stage_players.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "adapters/stage/desktop/stage_outputs.h"
#include "adapters/stage/desktop/stage_workspace.h"
#include "adapters/stage/simulated_hal.h"
#include "platform/audio_constants.h"

namespace plemora {

namespace {

/// What decides where a player is heard.
constexpr std::array<AudioObjectPropertyAddress, 2> outputAddresses{
    {{kAudioHardwarePropertyDefaultOutputDevice, kAudioObjectPropertyScopeGlobal,
      kAudioObjectPropertyElementMain},
     {kAudioHardwarePropertyDevices, kAudioObjectPropertyScopeGlobal,
      kAudioObjectPropertyElementMain}}};
constexpr double sampleRate = 48000;
constexpr Size windowSize{240, 120};

SampleSource tone(double frequency, float amplitude) {
  const double step = 2 * std::numbers::pi * frequency / sampleRate;
  return [step, amplitude](std::uint64_t frame, std::uint32_t) {
    return amplitude * static_cast<float>(std::sin(step * static_cast<double>(frame)));
  };
}

}  // namespace

StagePlayers::StagePlayers(SimulatedHal& hal, StageWorkspace& workspace,
                           StageWindowNumbers& numbers)
    : hal_(hal),
      workspace_(workspace),
      numbers_(numbers),
      outputsChanged_(std::make_shared<AudioListenerBlock>([this](auto) { route(); })) {
  for (const auto& address : outputAddresses) {
    hal_.addListener(kAudioObjectSystemObject, address, outputsChanged_);
  }
}

StagePlayers::~StagePlayers() {
  for (const auto& address : outputAddresses) {
    hal_.removeListener(kAudioObjectSystemObject, address, outputsChanged_);
  }
}

StagePlayer& StagePlayers::start(const std::string& bundleID, const std::string& name,
                                 double frequency, float amplitude, const std::string& deviceUID) {
  stop(bundleID);
  StagePlayer player{.bundleID = bundleID,
                     .name = name,
                     .frequency = frequency,
                     .amplitude = amplitude,
                     .deviceUID = deviceUID};
  player.pid = workspace_.start({.pid = -1,
                                 .bundleID = bundleID,
                                 .localizedName = name,
                                 .icon = {bundleID},
                                 .activationPolicy = ActivationPolicy::regular});
  workspace_.onTerminated(player.pid, [this, pid = player.pid] { ended(pid); });
  player.isPlaying = true;
  player.process = hal_.addProcess({.pid = player.pid,
                                    .isRunningOutput = true,
                                    .devices = {},
                                    .source = tone(frequency, amplitude)});
  player.number = player.order = numbers_.next();
  const auto step = static_cast<double>(started_++ % 8) * 40;
  player.frame = {80 + step, 160 + step, windowSize.width, windowSize.height};
  players_.push_back(std::move(player));
  route();
  return players_.back();
}

void StagePlayers::route() {
  const auto outputs = stageOutputs(hal_);
  for (const StagePlayer& player : players_) {
    AudioObjectID device = hal_.defaultOutput();
    for (const AudioObjectID id : outputs) {
      if (hal_.device(id).uid == player.deviceUID) {
        device = id;
      }
    }
    hal_.updateProcess(player.process, [device](SimulatedProcess& process) {
      process.devices.clear();
      if (device != kAudioObjectUnknown) {
        process.devices.push_back(device);
      }
    });
  }
}

StagePlayer* StagePlayers::find(const std::string& bundleID) {
  const auto found = std::ranges::find(players_, bundleID, &StagePlayer::bundleID);
  return found == players_.end() ? nullptr : &*found;
}

void StagePlayers::setPlaying(const std::string& bundleID, bool isPlaying) {
  if (StagePlayer* player = find(bundleID)) {
    player->isPlaying = isPlaying;
    hal_.updateProcess(player->process, [isPlaying](SimulatedProcess& process) {
      process.isRunningOutput = isPlaying;
    });
  }
}

void StagePlayers::stop(const std::string& bundleID) {
  if (const StagePlayer* player = find(bundleID)) {
    const std::int32_t pid = player->pid;
    workspace_.exit(pid);
    ended(pid);
  }
}

void StagePlayers::ended(std::int32_t pid) {
  const auto found = std::ranges::find(players_, pid, &StagePlayer::pid);
  if (found != players_.end()) {
    hal_.removeProcess(found->process);
    players_.erase(found);
  }
}

Rect StagePlayers::button(const StagePlayer& player) {
  return {player.frame.midX() - 20, player.frame.minY() + 16, 40, 40};
}

void StagePlayers::appendWindows(std::vector<StageWindowRecord>& windows) {
  for (const StagePlayer& player : players_) {
    windows.push_back({.kind = StageWindowKind::player,
                       .number = player.number,
                       .order = player.order,
                       .ownerPid = player.pid,
                       .ownerName = player.name,
                       .frame = player.frame,
                       .solid = player.frame,
                       .model = &player});
  }
}

void StagePlayers::pointer(const StageWindowRecord& window, const StagePointerEvent& event) {
  const auto found = std::ranges::find(players_, window.number, &StagePlayer::number);
  if (found == players_.end()) {
    return;
  }
  StagePlayer& player = *found;
  if (event.phase == StagePointerEvent::Phase::pressed) {
    workspace_.activate(player.pid);
    player.order = numbers_.next();
    isOnButton_ = button(player).contains(event.location);
    grip_ = {event.location.x - player.frame.x, event.location.y - player.frame.y};
    if (isOnButton_) {
      setPlaying(player.bundleID, !player.isPlaying);
    }
  } else if (event.phase == StagePointerEvent::Phase::dragged && !isOnButton_) {
    player.frame.x = event.location.x - grip_.x;
    player.frame.y = event.location.y - grip_.y;
  }
}

}  // namespace plemora
