#pragma once

#include <string_view>

namespace plemora {

/// Beginning of the UIDs of the aggregate devices that this program makes for its taps. Such
/// devices are never listed and never count as a device that an app plays to.
inline constexpr std::string_view privateDeviceUIDPrefix = "com.quorvane.mixer.aggregate.";

inline bool isPrivateDeviceUID(std::string_view uid) {
  return uid.starts_with(privateDeviceUIDPrefix);
}

}  // namespace plemora
