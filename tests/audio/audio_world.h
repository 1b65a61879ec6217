#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "adapters/stage/manual_serial_queue.h"
#include "adapters/stage/memory_defaults.h"
#include "adapters/stage/scripted_consent.h"
#include "adapters/stage/scripted_system_info.h"
#include "adapters/stage/scripted_workspace.h"
#include "adapters/stage/simulated_hal.h"
#include "adapters/stage/virtual_clock.h"
#include "adapters/stage/virtual_main_queue.h"
#include "audio/mixer_model.h"
#include "support/log_keeper.h"

namespace plemora {

/// A simulated desktop with built-in speakers, a USB device and a Bluetooth headset, on which the
/// mixer runs when it is started. Nothing happens by itself: settle() lets the queues run.
struct AudioWorld {
  static constexpr std::int32_t ownPid = 4;

  LogKeeper log;
  VirtualClock clock;
  VirtualMainQueue main{clock};
  StageQueueFactory queues;
  SimulatedHal hal{main};
  ScriptedWorkspace workspace;
  MemoryDefaults defaults;
  ScriptedConsent consent;
  ScriptedSystemInfo system;
  std::vector<std::string> arguments;
  AudioObjectID speakers = hal.addDevice({.uid = "speakers", .name = "Speakers"});
  AudioObjectID usb =
      hal.addDevice({.uid = "usb", .name = "Desk", .transport = kAudioDeviceTransportTypeUSB});
  AudioObjectID headset = hal.addDevice(
      {.uid = "headset", .name = "Headset", .transport = kAudioDeviceTransportTypeBluetooth});
  std::unique_ptr<MixerModel> mixer;

  ~AudioWorld() {
    mixer.reset();
    settle();
  }

  MixerServices services() {
    return {hal, hal, main, queues, clock, workspace, defaults, consent, system, arguments, ownPid};
  }

  MixerModel& start() {
    mixer = std::make_unique<MixerModel>(services());
    settle();
    return *mixer;
  }

  void settle() {
    while (queues.runAll() + main.drain() > 0) {
    }
  }

  /// Lets time pass, the queues running before and after.
  void pass(double seconds) {
    settle();
    main.advance(seconds);
    settle();
  }

  void launch(std::int32_t pid, const std::string& bundleID, const std::string& name,
              ActivationPolicy policy = ActivationPolicy::regular) {
    workspace.launch({.pid = pid,
                      .bundleID = bundleID,
                      .localizedName = name,
                      .icon = {name + ".png"},
                      .activationPolicy = policy});
  }

  /// An app with one process that plays a constant 1.0 to the device, or to none.
  AudioObjectID play(std::int32_t pid, const std::string& bundleID, const std::string& name,
                     std::optional<AudioObjectID> device, bool isPlaying = true) {
    launch(pid, bundleID, name);
    return hal.addProcess({.pid = pid,
                           .isRunningOutput = isPlaying,
                           .devices = device ? std::vector{*device} : std::vector<AudioObjectID>{},
                           .source = [](std::uint64_t, std::uint32_t) { return 1.0f; }});
  }

  /// The first sample's level that a device plays in one step from now, once ramps are over.
  float heardOn(AudioObjectID device) {
    hal.step(64);
    hal.step(64);
    const Sound sound = hal.heard(device);
    return sound.empty() || sound[0].empty() ? 0.0f : sound[0].back();
  }

  std::optional<AppChannel> row(const std::string& id) {
    for (const AppChannel& channel : mixer->channels.get()) {
      if (channel.id == id) {
        return channel;
      }
    }
    return std::nullopt;
  }

  std::vector<std::string> rowNames() {
    std::vector<std::string> names;
    for (const AppChannel& channel : mixer->channels.get()) {
      names.push_back(channel.name);
    }
    return names;
  }

  /// Nothing of ours is left in the HAL.
  bool isClean() {
    return hal.liveTaps().empty() && hal.liveAggregates().empty() && hal.liveProcs() == 0;
  }
};

}  // namespace plemora
