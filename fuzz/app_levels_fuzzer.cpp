#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "audio/app_levels.h"

// Whatever is stored: it is refused, or it is read, and then writing it loses nothing.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const auto levels = plemora::parseAppLevels(bytes);
  if (!levels) {
    return 0;
  }
  for (const auto& [id, level] : *levels) {
    if (!(level.gain() >= 0 && level.gain() <= 1)) {
      std::abort();
    }
  }
  const auto written = plemora::serialiseAppLevels(*levels, bytes);
  if (plemora::parseAppLevels(written) != levels) {
    std::abort();
  }
  // What was carried over once is carried over again.
  if (plemora::serialiseAppLevels(*levels, written) != written) {
    std::abort();
  }
  return 0;
}
