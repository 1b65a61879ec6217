#include "adapters/linux/desktop/system_clock.h"

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <random>

namespace plemora {

WallTime SystemClock::now() {
  return std::chrono::system_clock::now();
}

double SystemClock::mediaTime() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

std::string SystemClock::makeUUID() {
  std::random_device random;
  const auto word = [&random] { return static_cast<std::uint32_t>(random()); };
  const std::uint32_t first = word();
  const std::uint32_t second = (word() & 0xffff0fff) | 0x00004000;  // version 4
  const std::uint32_t third = (word() & 0x3fffffff) | 0x80000000;   // variant 1
  char text[37];
  std::snprintf(text, sizeof text, "%08X-%04X-%04X-%04X-%04X%08X", first, second >> 16,
                second & 0xffff, third >> 16, third & 0xffff, word());
  return text;
}

}  // namespace plemora
