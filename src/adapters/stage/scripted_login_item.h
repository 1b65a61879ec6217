#pragma once

#include <optional>
#include <string>

#include "platform/login_item.h"

namespace plemora {

/// A login item that is made or refused as a script has it. Main thread.
class ScriptedLoginItem : public LoginItem {
 public:
  std::optional<std::string> failure;  ///< why it is refused; none: it is made
  LoginItemState current = LoginItemState::absent;
  int attempts = 0;

  LoginItemState state() override { return current; }
  std::optional<std::string> enable() override {
    ++attempts;
    current = failure ? current : LoginItemState::on;
    return failure;
  }
};

}  // namespace plemora
