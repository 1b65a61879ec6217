#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/audio_types.h"

namespace plemora {

/// One output device that a user can choose. A record; equal when all fields are.
struct OutputDevice {
  AudioObjectID id = 0;  ///< its audio object, and its identity
  std::string uid;       ///< stable across runs
  std::string name;      ///< for people
  std::string symbol;    ///< name of its icon
  FourCharCode transport = 0;

  /// Whether it is worn: the symbol says so.
  bool isHeadphones() const {
    return symbol == "headphones" || symbol == "beats.headphones" || symbol.starts_with("airpods");
  }

  bool operator==(const OutputDevice&) const = default;
};

/// Prepared rows of a demonstration, and whether they stand alone.
struct DemoDevices {
  std::vector<OutputDevice> extra;  ///< their UIDs begin with demoDeviceUIDPrefix
  bool hideReal = false;
};

/// Beginning of the UIDs of rows that stand for no real device.
inline constexpr std::string_view demoDeviceUIDPrefix = "demo-";

}  // namespace plemora
