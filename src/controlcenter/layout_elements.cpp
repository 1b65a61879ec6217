#include "controlcenter/layout_elements.h"

#include "controlcenter/control_identity.h"
#include "controlcenter/mixer_control.h"

namespace plemora {

namespace {

struct SizeName {
  std::string_view name;
  TileSize size;
};

constexpr SizeName sizes[] = {
    {"square1x1", {1, 1}}, {"rect2x1", {2, 1}}, {"square2x2", {2, 2}}, {"rect4x1", {4, 1}}};

std::optional<std::int64_t> coordinate(const LayoutJson& element, const char* axis) {
  const LayoutJson* location = layoutMember(element, "location");
  return location ? layoutInteger(layoutMember(*location, axis)) : std::nullopt;
}

}  // namespace

std::string elementID(const LayoutJson& element) {
  const LayoutJson* id = layoutMember(element, "id");
  const LayoutJson* rawValue = id ? layoutMember(*id, "rawValue") : nullptr;
  return rawValue && rawValue->is_string() ? rawValue->get<std::string>() : std::string();
}

std::optional<std::int64_t> elementColumn(const LayoutJson& element) {
  return coordinate(element, "x");
}

std::optional<std::int64_t> elementRow(const LayoutJson& element) {
  return coordinate(element, "y");
}

TileSize elementSize(const LayoutJson& element) {
  const LayoutJson* size = layoutMember(element, "size");
  if (size && size->is_object() && size->size() == 1) {
    for (const auto& [name, cells] : sizes) {
      if (size->begin().key() == name) {
        return cells;
      }
    }
  }
  return {};
}

LayoutJson makeElement(const std::string& identifier, std::int64_t x, std::int64_t y,
                       const char* size) {
  return {{"id", {{"rawValue", identifier}}},
          {"location", {{"x", x}, {"y", y}}},
          {"size", {{size, LayoutJson::object()}}}};
}

bool isMixerControl(const LayoutJson& control) {
  const LayoutJson* identity = layoutMember(control, "ControlIdentity");
  return identity && identity->is_string() &&
         isMixerControlIdentity(identity->get_ref<const std::string&>());
}

LayoutJson makeMixerControl(const std::string& identifier) {
  return {{"ControlIdentity", controlIdentity},
          {"ControlSize", 2},
          {"ControlType", 2},
          {"DisplayName", "Plemora"},
          {"ControlDescription", "Master volume, each app's volume and the output device."},
          {"Identifier", LayoutJson::array({identifier})},
          {"OverrideSizeForMenuBar", false},
          {"PromptsForUserConfiguration", false}};
}

}  // namespace plemora
