#include <cstddef>
#include <cstdint>

#include "adapters/stage/fresh_layout.h"
#include "fuzzed_layout.h"

// The grid of Control Center, with the controls of a fresh system.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::string controls = plemora::freshLayout().controls;
  plemora::exerciseLayout({controls, {reinterpret_cast<const char*>(data), size}});
  return 0;
}
