#pragma once

#include <string>

#include "platform/clock.h"

namespace plemora {

/// The machine's own time, and UUIDs from its random source.
class SystemClock : public Clock {
 public:
  WallTime now() override;
  double mediaTime() override;
  std::string makeUUID() override;
};

}  // namespace plemora
