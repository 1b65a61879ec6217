#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "platform/system_info.h"

namespace plemora {

/// Facts about the machine from sysfs.
class LinuxSystemInfo : public SystemInfo {
 public:
  explicit LinuxSystemInfo(std::filesystem::path root = "/");

  /// The firmware's name of the product, or the device tree's on boards without such a firmware.
  std::optional<std::string> hardwareModel() override;

  /// A battery of the machine itself; those of mice and headsets do not count.
  bool hasInternalBattery() override;

 private:
  std::filesystem::path root_;
};

}  // namespace plemora
