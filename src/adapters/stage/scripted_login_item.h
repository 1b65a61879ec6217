#pragma once

#include <optional>
#include <string>

#include "platform/login_item.h"

namespace plemora {

/// A login item that is made or refused as a script has it. Main thread.
class ScriptedLoginItem : public LoginItem {
 public:
  std::optional<std::string> failure;  ///< why it is refused; none: it is made
  int attempts = 0;

  std::optional<std::string> enable() override {
    ++attempts;
    return failure;
  }
};

}  // namespace plemora
