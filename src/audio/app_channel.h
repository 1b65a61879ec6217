#pragma once

#include <optional>
#include <string>

#include "base/image.h"

namespace plemora {

/// One row of the mixer.
struct AppChannel {
  std::string id;    ///< bundle identifier
  std::string name;  ///< as shown
  Image icon;
  bool isPlaying = false;
  float volume = 1.0f;  ///< 0...1, the slider's position; its square is the gain
  bool isMuted = false;
  std::optional<std::string> outputUID;  ///< chosen device; none: follows the system's default
  std::string outputSymbol;              ///< of the device that the app is heard on
  bool isRouted = false;                 ///< heard on another device than it plays to

  bool operator==(const AppChannel&) const = default;
};

}  // namespace plemora
