#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "adapters/files/settings_file.h"

// Whatever the settings file holds: it is refused with a reason, or it survives being changed and
// written, with every member that was not touched as it was.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using plemora::SettingsFile;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  std::string error;
  auto file = SettingsFile::parse(text, error);
  if (!file) {
    if (error.empty()) {
      std::abort();
    }
    return 0;
  }
  const std::string written = file->serialise();
  const auto again = SettingsFile::parse(written, error);
  if (!again || again->serialise() != written) {
    std::abort();
  }
  // The text itself as a value: any bytes come back, and nothing else has changed.
  file->setBytes("fuzzed", text);
  file->setBoolean("flag", size % 2 == 0);
  auto changed = SettingsFile::parse(file->serialise(), error);
  if (!changed || changed->bytes("fuzzed") != std::string(text) ||
      changed->boolean("flag") != (size % 2 == 0)) {
    std::abort();
  }
  changed->copyMember("fuzzed", *again);
  changed->copyMember("flag", *again);
  for (const char* key : {"appLevels", "demo", "soundReplaced"}) {
    if (changed->bytes(key) != again->bytes(key) || changed->boolean(key) != again->boolean(key)) {
      std::abort();
    }
  }
  return 0;
}
