#include <cstddef>
#include <cstdint>

#include "adapters/stage/fresh_layout.h"
#include "base/base64.h"
#include "base/property_list.h"
#include "fuzzed_layout.h"

namespace {

using namespace plemora;

void exerciseDisplayables(const std::string& bytes) {
  static const FreshLayout fresh = freshLayout();
  static const LayoutJson boxes = parseLayoutJson(fresh.boxes);
  LayoutJson changed = boxes;
  changed[0]["displayablesData"] = encodeBase64(bytes);
  exerciseLayout({fresh.controls, layoutJsonText(changed)});
}

}  // namespace

// What the tiles of Control Center show: the property list itself, and one of the lists within it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const FreshLayout fresh = freshLayout();
  static const PropertyList displayables =
      ControlCenterLayout::Layout::decode({fresh.controls, fresh.boxes}).displayables;
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  exerciseDisplayables(bytes);
  PropertyList changed = displayables;
  changed.setMember("modules", PropertyList::data(bytes));
  exerciseDisplayables(changed.binary());

  // A list that is taken is kept whole.
  try {
    const PropertyList list = PropertyList::parse(bytes);
    require(PropertyList::parse(list.binary()) == list);
  } catch (const PropertyListError&) {
  }
  return 0;
}
