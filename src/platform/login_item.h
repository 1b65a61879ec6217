#pragma once

#include <optional>
#include <string>

namespace plemora {

enum class LoginItemState {
  absent,
  on,
  switchedOff,  ///< by the user, who is not to be overruled unasked
};

/// The program's entry among what starts at login. Main thread.
class LoginItem {
 public:
  virtual ~LoginItem() = default;

  /// Whether the program starts at the next login; read anew at every call.
  virtual LoginItemState state() = 0;
  /// Makes it start then, also where the user had switched that off; a text that says why when that
  /// fails.
  virtual std::optional<std::string> enable() = 0;
};

}  // namespace plemora
