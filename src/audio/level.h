#pragma once

#include <map>
#include <optional>
#include <string>

namespace plemora {

/// What the user has set for one app.
struct Level {
  float volume = 1.0f;                ///< 0...1
  bool muted = false;                 ///< keeps the volume
  std::optional<std::string> output;  ///< UID of the chosen device; none: the default

  /// Linear gain: the square of the volume, 0 when muted.
  float gain() const { return muted ? 0.0f : volume * volume; }

  bool operator==(const Level&) const = default;
};

/// By bundle identifier.
using Levels = std::map<std::string, Level>;

}  // namespace plemora
