#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "audio/level.h"
#include "platform/user_defaults.h"

namespace plemora {

/// Reads the JSON of "appLevels". None when the bytes do not hold it: no JSON, no object, a member
/// without a number "volume" and a boolean "muted", an "output" that is no text, or nesting beyond
/// every sensible depth. Volumes outside 0...1 are clamped.
std::optional<Levels> parseAppLevels(std::string_view bytes);

/// The JSON of all levels. Members that this version does not know are carried over from the
/// previous bytes for the apps that are still there.
std::string serialiseAppLevels(const Levels& levels, std::string_view previous = {});

/// The levels in the settings, key "appLevels". Main thread.
class AppLevels {
 public:
  static constexpr const char* key = "appLevels";
  static constexpr const char* unreadableKey = "appLevels.unreadable";

  explicit AppLevels(UserDefaults& defaults) : defaults_(defaults) {}

  /// Empty, with a warning in the log, when what is stored cannot be read.
  Levels load();

  /// Replaces what is stored. Before the first time that this overwrites unreadable bytes they are
  /// copied to unreadableKey (with a number behind it when that is taken), with a warning.
  void save(const Levels& levels);

 private:
  std::optional<std::string> stored(const std::string& under);
  void keepUnreadable(const std::string& bytes);

  UserDefaults& defaults_;
};

}  // namespace plemora
