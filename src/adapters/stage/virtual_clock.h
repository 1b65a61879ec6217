#pragma once

#include <cstdint>
#include <mutex>
#include <string>

#include "platform/clock.h"

namespace plemora {

/// A clock that stands still until it is moved. The date runs along with the media time; UUIDs
/// count upwards, so that every run sees the same ones. Any thread.
class VirtualClock : public Clock {
 public:
  WallTime now() override;
  double mediaTime() override;
  std::string makeUUID() override;

  /// Moves time forward to a media time, in seconds; never back.
  void advanceTo(double mediaTime);

  /// Sets the date of this moment, as a user may; the media time does not jump.
  void setNow(WallTime now);

 private:
  std::mutex mutex_;
  double mediaTime_ = 0;
  WallTime start_ = WallTime(std::chrono::seconds(1'700'000'000));  // the date of media time 0
  std::uint64_t uuids_ = 0;
};

}  // namespace plemora
