#pragma once

#include <chrono>
#include <string>

namespace plemora {

using WallTime = std::chrono::system_clock::time_point;

/// Time and identity. Any thread but the real-time ones.
class Clock {
 public:
  virtual ~Clock() = default;

  /// The date. It may jump.
  virtual WallTime now() = 0;

  /// Seconds since an arbitrary start; never goes back.
  virtual double mediaTime() = 0;

  /// A fresh random UUID in upper case, "XXXXXXXX-XXXX-4XXX-XXXX-XXXXXXXXXXXX".
  virtual std::string makeUUID() = 0;
};

}  // namespace plemora
