#include <cstddef>
#include <cstdint>

#include "adapters/stage/fresh_layout.h"
#include "fuzzed_layout.h"

// The controls of Control Center, with the grid of a fresh system.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::string boxes = plemora::freshLayout().boxes;
  plemora::exerciseLayout({{reinterpret_cast<const char*>(data), size}, boxes});
  return 0;
}
