#pragma once

#include <optional>
#include <string>

#include "platform/system_info.h"

namespace plemora {

/// A machine as a script has it. Counts how often it is asked.
class ScriptedSystemInfo : public SystemInfo {
 public:
  std::optional<std::string> model = "Mac16,10";
  bool battery = false;
  SystemVersion systemVersion{26, 4, 0};
  std::string path = "/Applications/Plemora.app";
  std::string versionString = "Version 26.4 (Build 25E246)";
  std::optional<std::string> build = "1";
  std::optional<double> executableDate = 1'790'000'000.25;
  int modelReads = 0;
  int batteryReads = 0;

  std::optional<std::string> hardwareModel() override {
    ++modelReads;
    return model;
  }
  bool hasInternalBattery() override {
    ++batteryReads;
    return battery;
  }
  SystemVersion version() override { return systemVersion; }
  std::string operatingSystemVersionString() override { return versionString; }
  std::optional<std::string> bundleVersion() override { return build; }
  std::optional<double> executableModificationDate() override { return executableDate; }
  std::string bundlePath() override { return path; }
};

}  // namespace plemora
