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
};

}  // namespace plemora
