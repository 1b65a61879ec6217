#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/appearance.h"
#include "platform/system_info.h"
#include "platform/user_defaults.h"
#include "skin/look/built_in_styles.h"

namespace plemora {

/// Which of the system's looks the program follows: the release of the operating system, dark or
/// light, and the styles and numbers that go with them, each of which the settings may override.
/// Main thread. The services outlive it.
class ControlCenterLook {
 public:
  /// Where the release comes from.
  enum class ReleaseSource {
    system,             ///< the version of the operating system, as on a Mac
    settingElseSystem,  ///< the setting "release" when it names one, for systems without such glass
  };
  /// The setting: "26.1", "26.4" or "27". Read once, at creation; anything else is passed over with
  /// a warning.
  static constexpr const char* releaseKey = "release";

  ControlCenterLook(UserDefaults& defaults, SystemInfo& system, Appearance& appearance,
                    ReleaseSource source = ReleaseSource::system);

  /// "26.1", "26.4" or "27"; never changes.
  const std::string& release() const { return release_; }
  /// Whether it is 26.4 or later.
  bool isModern() const { return release_ != "26.1"; }
  /// Asked anew each time.
  bool isDark() const { return appearance_.isDark(); }
  /// Told of each change of that.
  [[nodiscard]] Subscription observe(std::function<void(bool isDark)> observer) const {
    return appearance_.observe(std::move(observer));
  }

  /// The style string of that key: the setting "key.dark" or "key.light", else the setting "key",
  /// else the built-in one of this release and appearance, of this release, of 26.1. Ends the
  /// program when a table lacks "26.1".
  std::string style(const std::string& key, BuiltInStyles builtIn) const;

  /// One number of the setting "look", a list such as "track=0.2,rimOuter=0.5". The first piece of
  /// that name decides; none when it is no number or there is none.
  std::optional<double> tuning(std::string_view name) const;

 private:
  UserDefaults& defaults_;
  Appearance& appearance_;
  std::string release_;
};

}  // namespace plemora
