#pragma once

#include <optional>
#include <string>

#include "platform/update_service.h"

namespace plemora {

/// Updates as a script has them. Main thread.
class ScriptedUpdateService : public UpdateService {
 public:
  std::optional<std::string> failure;  ///< why it does not start; none: it does
  int starts = 0;
  int checks = 0;

  std::optional<std::string> start() override {
    ++starts;
    return failure;
  }
  void checkForUpdates() override { ++checks; }
};

}  // namespace plemora
