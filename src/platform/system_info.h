#pragma once

#include <optional>
#include <string>

namespace plemora {

/// Facts about the machine. Any thread but the real-time ones.
class SystemInfo {
 public:
  virtual ~SystemInfo() = default;

  /// Model identifier such as "Mac16,10"; none when it cannot be read.
  virtual std::optional<std::string> hardwareModel() = 0;

  /// Whether a power source of type "InternalBattery" is present.
  virtual bool hasInternalBattery() = 0;
};

}  // namespace plemora
