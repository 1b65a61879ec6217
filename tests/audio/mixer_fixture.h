#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "audio/audio_world.h"

namespace plemora {

inline constexpr const char* player = "com.example.Player";

/// A mixer and one player.
struct MixerTest : testing::Test {
  AudioWorld world;

  /// The mixer, with one app that plays to the speakers.
  MixerModel& startWithPlayer() {
    process = world.play(11, player, "Player", world.speakers);
    return world.start();
  }

  int builds() { return world.hal.faults().calls(HalCall::createTap); }
  std::string stored() { return world.defaults.data("appLevels").value_or(""); }
  std::shared_ptr<ManualSerialQueue> tapQueue() {
    return world.queues.queues("com.quorvane.mixer.taps").at(0);
  }

  AudioObjectID process = 0;
};

}  // namespace plemora
