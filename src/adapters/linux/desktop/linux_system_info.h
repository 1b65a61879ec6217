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

  /// The Mac's release whose look and behaviour the program has on Linux.
  SystemVersion version() override { return {26, 4, 0}; }

  /// The file that was started; empty when it cannot be told.
  std::string bundlePath() override;

 private:
  std::filesystem::path root_;
};

}  // namespace plemora
