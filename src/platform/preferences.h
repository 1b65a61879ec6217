#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

namespace plemora {

/// Whose machine a preference is for: every machine of the user, or this one alone.
enum class PreferenceHost { any, current };

struct PreferenceData {
  std::string bytes;

  bool operator==(const PreferenceData&) const = default;
};

/// An array, a dictionary, a date: nothing that this program reads.
struct OtherPreference {
  bool operator==(const OtherPreference&) const = default;
};

using PreferenceValue =
    std::variant<bool, std::int64_t, double, std::string, PreferenceData, OtherPreference>;

/// The preferences of other programs, of the current user (CFPreferences on a Mac). Main thread. A
/// read that fails gives none.
class Preferences {
 public:
  virtual ~Preferences() = default;

  /// What is stored, or what was set here and waits for synchronize.
  virtual std::optional<PreferenceValue> value(const std::string& key, const std::string& domain,
                                               PreferenceHost host) = 0;
  /// Takes effect for others with synchronize at the latest; none removes the key.
  virtual void setValue(const std::string& key, const std::optional<PreferenceValue>& value,
                        const std::string& domain, PreferenceHost host) = 0;
  /// Stores what was set, whole or not at all, and sees what others have stored. False when that
  /// failed; what was set then waits on.
  virtual bool synchronize(const std::string& domain, PreferenceHost host) = 0;

  /// As the domain's own program sees the key: this machine's value before that of every machine.
  virtual std::optional<PreferenceValue> appValue(const std::string& key,
                                                  const std::string& domain) = 0;
  /// Synchronizes both.
  virtual bool appSynchronize(const std::string& domain) = 0;
};

}  // namespace plemora
