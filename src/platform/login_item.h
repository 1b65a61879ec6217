#pragma once

#include <optional>
#include <string>

namespace plemora {

/// The program's entry among what starts at login. Main thread.
class LoginItem {
 public:
  virtual ~LoginItem() = default;

  /// Makes the program start at the next login; a text that says why when that fails.
  virtual std::optional<std::string> enable() = 0;
};

}  // namespace plemora
