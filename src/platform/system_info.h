#pragma once

#include <compare>
#include <optional>
#include <string>

namespace plemora {

struct SystemVersion {
  int major = 0;
  int minor = 0;
  int patch = 0;

  auto operator<=>(const SystemVersion&) const = default;
};

/// Facts about the machine. Any thread but the real-time ones.
class SystemInfo {
 public:
  virtual ~SystemInfo() = default;

  /// Model identifier such as "Mac16,10"; none when it cannot be read.
  virtual std::optional<std::string> hardwareModel() = 0;

  /// Whether a power source of type "InternalBattery" is present.
  virtual bool hasInternalBattery() = 0;

  /// Of the operating system; {0, 0, 0} when it cannot be read.
  virtual SystemVersion version() = 0;

  /// The same as a text for people, build included, such as "Version 26.4 (Build 25E246)".
  virtual std::string operatingSystemVersionString() = 0;

  /// CFBundleVersion of the program; none when it has none.
  virtual std::optional<std::string> bundleVersion() = 0;

  /// When the content of the program's executable changed last, in seconds since 1970; none when
  /// that cannot be read.
  virtual std::optional<double> executableModificationDate() = 0;

  /// Where this copy of the program lies: its bundle, or the file that was started.
  virtual std::string bundlePath() = 0;
};

}  // namespace plemora
