#pragma once

#include <optional>
#include <string>
#include <vector>

#include "audio/audio_permission.h"
#include "audio/level.h"

namespace plemora {

/// One of the things that together decide whether an app is heard.
struct AudibilityFactor {
  std::string name;  ///< "playing", "app mute", "app level", "route", "device mute",
                     ///< "device volume", "permission", in this order
  double value = 1;  ///< 0: this alone makes the app silent; 1: no influence
  std::string text;  ///< for the user
};

/// Why an app is or is not heard.
struct Audibility {
  std::vector<AudibilityFactor> factors;
  double product = 1;   ///< of all values; 0: silent
  std::string verdict;  ///< one sentence; names every factor that is 0, with its text
};

/// What is known about one app and about the device that it is heard on.
struct AudibilityFacts {
  /// What stands between the app and its level.
  enum class Tap {
    notNeeded,  ///< full volume on the app's own device
    running,
    building,
    missing,  ///< it could not be built: the app plays unchanged on its own device
  };

  std::string appName;
  bool isPlaying = false;
  Level level;
  Tap tap = Tap::notNeeded;
  std::string deviceName;              ///< where the app is heard; empty: there is no output device
  bool isRouted = false;               ///< that is not where the app itself plays
  bool chosenOutputIsMissing = false;  ///< the level names a device that is not there
  bool deviceIsMuted = false;
  std::optional<float> deviceVolume;  ///< 0...1; none when it cannot be set
  AudioPermission::Status permission = AudioPermission::Status::unknown;
};

Audibility explainAudibility(const AudibilityFacts& facts);

}  // namespace plemora
