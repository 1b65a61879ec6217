#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/audio_properties.h"
#include "platform/system_info.h"

namespace plemora {

/// Chooses the name of the icon that stands for an output device. Main thread. Both references
/// must outlive it.
class DeviceSymbols {
 public:
  DeviceSymbols(AudioProperties& properties, SystemInfo& system)
      : properties_(properties), system_(system) {}

  /// The icon of a device by its name and transport. Built-in devices also count by what is
  /// plugged into them, which is read from the device.
  std::string symbol(AudioObjectID device, std::string_view name, FourCharCode transport);

  /// The icon of this computer's own speakers. Computed once, on first use.
  const std::string& builtInSymbol();

  /// Whether this computer runs on a battery of its own. Computed once, on first use.
  bool hasInternalBattery();

 private:
  AudioProperties& properties_;
  SystemInfo& system_;
  std::optional<std::string> builtInSymbol_;
  std::optional<bool> hasInternalBattery_;
};

}  // namespace plemora
