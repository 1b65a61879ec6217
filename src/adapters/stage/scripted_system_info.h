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
  std::string bundlePath() override { return path; }
};

}  // namespace plemora
