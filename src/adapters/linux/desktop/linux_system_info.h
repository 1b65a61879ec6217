#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "platform/system_info.h"

namespace plemora {

/// Facts about the machine from sysfs.
class LinuxSystemInfo : public SystemInfo {
 public:
  /// bundleVersion: of this program.
  explicit LinuxSystemInfo(std::filesystem::path root = "/",
                           std::optional<std::string> bundleVersion = {});

  /// The firmware's name of the product, or the device tree's on boards without such a firmware.
  std::optional<std::string> hardwareModel() override;

  /// A battery of the machine itself; those of mice and headsets do not count.
  bool hasInternalBattery() override;

  /// The Mac's release whose look and behaviour the program has on Linux.
  SystemVersion version() override { return {26, 4, 0}; }

  /// The distribution's name and version, as it gives them.
  std::string operatingSystemVersionString() override;
  std::optional<std::string> bundleVersion() override { return bundleVersion_; }
  std::optional<double> executableModificationDate() override;

  /// The file that was started; empty when it cannot be told.
  std::string bundlePath() override;

 private:
  std::filesystem::path root_;
  std::optional<std::string> bundleVersion_;
};

}  // namespace plemora
