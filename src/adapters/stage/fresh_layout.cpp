#include "adapters/stage/fresh_layout.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <string_view>

#include "base/base64.h"
#include "base/property_list.h"
#include "platform/preferences.h"

// Spelled out here rather than taken from the program: an error there is not to be repeated.

namespace plemora {

namespace {

struct Tile {
  const char* module;
  int x;
  int y;
  const char* size;
  int columns;
  int rows;
  const char* unknown = "";  ///< more members of the element, as JSON text
};

constexpr Tile tiles[] = {
    {"WiFi", 0, 0, "rect2x1", 2, 1, R"(,"appearance":{"tint":"system","weight":1.0})"},
    {"NowPlaying", 2, 0, "square2x2", 2, 2},
    {"Bluetooth", 0, 1, "square1x1", 1, 1},
    {"AirDrop", 1, 1, "square1x1", 1, 1, R"(,"flags":18446744073709551615)"},
    {"FocusModes", 0, 2, "rect2x1", 2, 1, R"(,"hints":[null,true,-3,2.50e-1,"\u00e9\/\n"])"},
    {"StageManager", 2, 2, "square1x1", 1, 1},
    {"ScreenMirroring", 3, 2, "square1x1", 1, 1},
    {"Display", 0, 3, "rect4x1", 4, 1},
    {"Sound", 0, 4, "rect4x1", 4, 1},
    {"Battery", 0, 5, "square1x1", 1, 1},
    {"KeyboardBrightness", 1, 5, "square1x1", 1, 1},
    {"Example Lamp", 2, 5, "rect2x1", 2, 1},
    {"Example Door", 0, 6, "square1x1", 1, 1},
    {"Weather", 1, 6, "rect3x1", 0, 0},  // of a size that this version does not know
};

std::string identifierOf(std::size_t tile) {
  char text[40];
  std::snprintf(text, sizeof text, "5EED0000-0000-4000-8000-%012zX", tile);
  return text;
}

PropertyList dictionary(const PropertyList::Members& members) {
  PropertyList list;
  for (const auto& [key, value] : members) {
    list.setMember(key, value);
  }
  return list;
}

PropertyList rawValue(const std::string& identifier) {
  return dictionary({{"rawValue", PropertyList::string(identifier)}});
}

PropertyList::Array moduleEntries() {
  PropertyList::Array entries;
  for (std::size_t i = 0; i < std::size(tiles); ++i) {
    const std::string_view module = tiles[i].module;
    if (module.starts_with("Example")) {
      continue;  // controls of other programs are no modules
    }
    entries.push_back(dictionary(
        {{"moduleId", PropertyList::string(std::string(module))},
         {"identifier", rawValue(identifierOf(i))},
         {"size", dictionary({{tiles[i].columns == 4 ? "large" : "small", PropertyList()}})},
         {"revision", PropertyList::integer(-static_cast<std::int64_t>(i))},
         {"archive", PropertyList::array({PropertyList::uid(3), PropertyList::real(0.1)})}}));
  }
  return entries;
}

std::string displayablesData() {
  PropertyList::Array instances;
  PropertyList::Array chronoControls;
  for (std::size_t i = 0; i < std::size(tiles); ++i) {
    instances.push_back(
        dictionary({{"instance", rawValue(identifierOf(i))},
                    {"order", PropertyList::integer(static_cast<std::int64_t>(i))}}));
    if (std::string_view(tiles[i].module).starts_with("Example")) {
      chronoControls.push_back(
          dictionary({{"identifier", rawValue(identifierOf(i))},
                      {"extension", PropertyList::string("org.example.home.controls")},
                      {"state", PropertyList::data(std::string("\0\xff", 2) + tiles[i].module)}}));
    }
  }
  const PropertyList displayables = dictionary(
      {{"version", PropertyList::integer(4)},
       {"modules", PropertyList::data(PropertyList::array(moduleEntries()).binary())},
       {"chronoControls", PropertyList::data(PropertyList::array(chronoControls).binary())},
       {"instanceIds", PropertyList::array(instances)},
       {"unknown", dictionary({{"root", PropertyList::uid(1)},
                               {"scale", PropertyList::real(2)},
                               {"count", PropertyList::integer(2)},
                               {"name", PropertyList::string("Contrôle")},
                               {"on", PropertyList::boolean(false)}})}});
  return encodeBase64(displayables.binary());
}

std::string elementsText() {
  std::string text;
  for (std::size_t i = 0; i < std::size(tiles); ++i) {
    const Tile& tile = tiles[i];
    text += std::string(i == 0 ? "" : ",") + R"({"size":{")" + tile.size +
            R"(":{}},"location":{"y":)" + std::to_string(tile.y) + R"(,"x":)" +
            std::to_string(tile.x) + R"(},"id":{"rawValue":")" + identifierOf(i) + R"("})" +
            tile.unknown + "}";
  }
  // One that waits for its place.
  return text + R"(,{"id":{"rawValue":"waiting"},"size":{"square1x1":{}},"page":1})";
}

std::string cellsText() {
  std::string text;
  for (const Tile& tile : tiles) {
    for (int i = 0; i < tile.columns; ++i) {
      for (int j = 0; j < tile.rows; ++j) {
        text += std::string(text.empty() ? "" : ",") + R"({"x":)" + std::to_string(tile.x + i) +
                R"(,"y":)" + std::to_string(tile.y + j) + "}";
      }
    }
  }
  return text;
}

/// The control of another program that stands on that tile.
std::string foreignControl(std::size_t tile, const std::string& kind) {
  const PropertyList identity =
      dictionary({{"extension", PropertyList::string("org.example.home.controls")},
                  {"kind", PropertyList::string(kind)},
                  {"root", PropertyList::uid(1)}});
  return R"({"ControlIdentity":")" + encodeBase64(identity.binary()) +
         R"(","ControlSize":2,"ControlType":1,"DisplayName":")" + tiles[tile].module +
         R"(","Identifier":[")" + identifierOf(tile) +
         R"("],"Tuning":[1e3,0.10,-0.0,123456789012345678901234567890]})";
}

}  // namespace

FreshLayout freshLayout() {
  FreshLayout layout;
  layout.boxes = R"([{"revision":7,"grid":{"columns":4,"elements":[)" + elementsText() +
                 R"(],"spacing":8.0},"occupiedLocations":[)" + cellsText() +
                 R"(],"displayablesData":")" + displayablesData() +
                 R"(","unknown":{"nested":[[[{}]]],"empty":""}},{"grid":"of another kind"}])";
  layout.controls = R"({"Version":3,"Controls":[)" + foreignControl(11, "lamp") + "," +
                    foreignControl(12, "door") +
                    R"(,{"ControlIdentity":"no base64!","Identifier":["waiting"]},)"
                    R"({"DisplayName":"without an identity"}],"LastChange":7.9e8})";
  return layout;
}

bool storeFreshLayout(Preferences& preferences) {
  const FreshLayout layout = freshLayout();
  const std::string controlsDomain = "com.apple.controlcenter";
  const std::string boxesDomain = "com.apple.controlcenter.bentoboxes";
  preferences.setValue("ControlCenterDisplayableChronoControlsProviderConfiguration",
                       PreferenceData{layout.controls}, controlsDomain, PreferenceHost::any);
  preferences.setValue("boxes", PreferenceData{layout.boxes}, boxesDomain, PreferenceHost::current);
  const bool hasControls = preferences.synchronize(controlsDomain, PreferenceHost::any);
  return preferences.synchronize(boxesDomain, PreferenceHost::current) && hasControls;
}

}  // namespace plemora
