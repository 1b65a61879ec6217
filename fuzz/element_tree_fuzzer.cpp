#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <stop_token>
#include <string>
#include <vector>

#include "adapters/stage/scripted_accessibility.h"
#include "skin/module_rect.h"
#include "skin/seam_shapes.h"
#include "skin/tile_finder.h"

namespace {

using namespace plemora;

constexpr std::size_t elements = 16;

/// Gives out the input piece by piece, and zeros once it is used up.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : data_(data), left_(size) {}

  bool isEmpty() const { return left_ == 0; }
  std::uint8_t byte() {
    std::uint8_t value = 0;
    take(&value, sizeof value);
    return value;
  }
  /// Any number there is, or one that a tile may well have.
  double number() {
    const std::uint8_t kind = byte();
    if (kind < 192) {
      return kind * 8.0 - 64;
    }
    double value = 0;
    take(&value, sizeof value);
    return value;
  }

 private:
  void take(void* target, std::size_t size) {
    const std::size_t taken = size < left_ ? size : left_;
    std::memcpy(target, data_, taken);
    data_ += taken;
    left_ -= taken;
  }

  const std::uint8_t* data_;
  std::size_t left_;
};

}  // namespace

// Whichever way elements list each other and wherever they say they are: the search comes to an
// end, and the module that is made of what it finds can be drawn.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  ScriptedAccessibility accessibility;
  std::vector<ScriptedAccessibility::ElementID> all = {accessibility.root(1)};
  while (all.size() < elements) {
    all.push_back(accessibility.make());
  }
  const auto any = [&] { return all[input.byte() % elements]; };
  while (!input.isEmpty()) {
    const auto element = any();
    switch (input.byte() % 4) {
      case 0: {
        std::vector<ScriptedAccessibility::ElementID> listed(input.byte() % 8U);
        for (auto& child : listed) {
          child = any();
        }
        accessibility.set(element, element == all[0] ? "AXWindows" : "AXChildren", listed);
        break;
      }
      case 1:
        accessibility.set(element, "AXIdentifier", std::string("com.quorvane.mixer.controls"));
        break;
      case 2:
        accessibility.setFrame(element,
                               {input.number(), input.number(), input.number(), input.number()});
        break;
      default:
        accessibility.clear(element, "AXSize");
    }
  }
  const auto frames =
      tileFrames(findTiles(*accessibility.application(1), std::stop_source().get_token()));
  if (!frames || frames->empty()) {
    return 0;
  }
  const Rect module = moduleRect(*frames, {0, 0, 1440, 900});
  if (!(module.width > 0 && module.height > 0 && std::isfinite(module.x + module.y))) {
    std::abort();
  }
  const SeamShapes shapes(module.size(), pillsOf(*frames, module), 23);
  for (const auto& path : {shapes.seam(3), shapes.caps(3), shapes.edges()}) {
    for (const RoundedRect& part : path) {
      if (!(part.rect.width >= 0 && part.rect.height >= 0 && part.radius >= 0)) {
        std::abort();
      }
    }
  }
  return 0;
}
