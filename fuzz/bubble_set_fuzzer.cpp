#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "adapters/stage/memory_defaults.h"
#include "adapters/stage/memory_files.h"
#include "adapters/stage/memory_resources.h"
#include "skin/bubble_cancel.h"

// Whatever a set's file holds: its layers have a mask each and finite numbers, and without any
// strength they change nothing.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace plemora;
  MemoryDefaults defaults;
  MemoryFiles files;
  MemoryResources resources;
  files.makeFolder("/sets");
  files.writeAtomically("/sets/27.json", std::string(reinterpret_cast<const char*>(data), size));
  files.writeAtomically("/sets/mask.png", "mask");
  defaults.setString(BubbleCancel::folderKey, "/sets");
  resources.pictures["mask"] = {1, 1, std::make_shared<std::vector<unsigned char>>(4)};
  const BubbleCancel bubbles(defaults, files, resources);
  for (const float strength : {0.0F, 0.3F, 1.0F}) {
    for (const BubbleCancel::Layer& layer : bubbles.layers("27", strength)) {
      if (layer.mask.width != 1) {
        std::abort();
      }
      for (std::size_t i = 0; i < layer.matrix.size(); ++i) {
        const float number = layer.matrix[i];
        if (!std::isfinite(number) || (strength == 0 && number != (i % 6 == 0 ? 1.0F : 0.0F))) {
          std::abort();
        }
      }
    }
  }
  return 0;
}
