#pragma once

#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "base/base64.h"
#include "controlcenter/control_identity.h"
#include "controlcenter/layout_world.h"

namespace plemora {

/// Makes up layouts in the form that Control Center has, otherwise as odd as can be. The same seed
/// gives the same layout everywhere.
class LayoutMaker {
 public:
  explicit LayoutMaker(unsigned seed) : random_(seed) {}

  /// One with at least one Sound in the grid.
  StoredLayout make() {
    Layout layout;
    const std::size_t tiles = below(4) == 0 ? 150 : below(20);
    for (std::size_t i = 0; i < tiles; ++i) {
      layout.elements.push_back(tile("tile " + std::to_string(i), static_cast<int>(i)));
    }
    const std::size_t sounds = below(5) == 0 ? 2 : 1;
    for (std::size_t i = 0; i < sounds; ++i) {
      addSound(layout, "sound " + std::to_string(i), static_cast<int>(tiles + i));
    }
    addModules(layout);
    addControls(layout);
    for (std::size_t i = below(4); i > 0; --i) {
      layout.instanceIDs.push_back(list(3, true));
      layout.chronoControls.push_back(list(3, true));
    }
    layout.displayables = list(2, true);
    layout.boxes = {object(3)};
    layout.boxes[0]["grid"] = object(2);
    for (std::size_t i = below(3); i > 0; --i) {
      layout.boxes.push_back(object(3));
    }
    layout.controlsRoot = object(3);
    StoredLayout stored = layout.encode();
    const char* const around[] = {"", " ", "\n\t"};
    stored.boxes = around[below(3)] + stored.boxes + around[below(3)];
    stored.controls += around[below(3)];
    return stored;
  }

 private:
  std::size_t below(std::size_t bound) { return random_() % bound; }
  bool chance(std::size_t percent) { return below(100) < percent; }

  std::string text() {
    const char* const texts[] = {"", "a", "é", "😀", "\"\\/", "\n", "rawValue", "Sound", "x"};
    return texts[below(std::size(texts))];
  }

  std::string unknownKey() {
    const std::string number = std::to_string(below(100));
    return "unknown " + number + text();
  }

  LayoutJson value(int depth) {
    const char* const numbers[] = {"0",
                                   "-1",
                                   "2.0",
                                   "1e3",
                                   "0.10",
                                   "18446744073709551615",
                                   "-0",
                                   "123456789012345678901234567890",
                                   "-9223372036854775808"};
    if (below(200) == 0) {
      return parseLayoutJson(std::string(300, '[') + std::string(300, ']'));
    }
    switch (below(depth > 0 ? 6 : 4)) {
      case 0:
        return nullptr;
      case 1:
        return chance(50);
      case 2:
        return parseLayoutJson(numbers[below(std::size(numbers))]);
      case 3:
        return text();
      case 4:
        return object(depth);
      default: {
        LayoutJson items = LayoutJson::array();
        for (std::size_t i = below(4); i > 0; --i) {
          items.push_back(value(depth - 1));
        }
        return items;
      }
    }
  }

  LayoutJson object(int depth) {
    LayoutJson members = LayoutJson::object();
    for (std::size_t i = below(4); i > 0; --i) {
      const std::string key = unknownKey();
      members[key] = value(depth - 1);
    }
    return members;
  }

  /// A property list; a dictionary if it must be.
  PropertyList list(int depth, bool isDictionary) {
    switch (isDictionary ? 0 : below(depth > 0 ? 9 : 7) + 1) {
      case 1:
        return PropertyList::boolean(chance(50));
      case 2:
        return PropertyList::integer(static_cast<std::int64_t>(random_()) - (1 << 30));
      case 3:
        return PropertyList::real(0.5 * static_cast<double>(below(9)));
      case 4:
        return PropertyList::string(text());
      case 5:
        return PropertyList::data(text());
      case 6:
        return PropertyList::uid(static_cast<std::uint32_t>(below(300)));
      case 7:
        return PropertyList::parse("<plist><date>2026-01-01T00:00:00Z</date></plist>");
      case 8:
        return PropertyList::array({list(depth - 1, false), list(depth - 1, chance(50))});
      default: {
        PropertyList members;
        for (std::size_t i = below(4); i > 0; --i) {
          const std::string key = unknownKey();
          members.setMember(key, list(depth - 1, false));
        }
        return members;
      }
    }
  }

  LayoutJson tile(const std::string& id, int row) {
    const char* const sizes[] = {"square1x1", "rect2x1", "square2x2", "rect4x1", "rect8x8"};
    LayoutJson element = object(2);
    element["size"] = chance(90) ? LayoutJson{{sizes[below(5)], LayoutJson::object()}} : value(2);
    if (chance(90)) {
      element["location"] = object(1);
      element["location"]["y"] = chance(90) ? LayoutJson(row / 2) : value(1);
      element["location"]["x"] = chance(90) ? LayoutJson(below(4)) : value(1);
    }
    if (chance(90)) {
      element["id"] = chance(90) ? LayoutJson{{"rawValue", id}} : value(2);
    }
    return element;
  }

  void addSound(Layout& layout, const std::string& id, int row) {
    LayoutJson element = tile(id, row);
    element["id"] = {{"rawValue", id}};
    if (chance(70)) {
      element = makeElement(id, 0, row, "rect4x1");
    }
    const auto place = static_cast<std::ptrdiff_t>(below(layout.elements.size() + 1));
    layout.elements.insert(layout.elements.begin() + place, element);
    layout.modules.push_back(moduleEntry(id, "Sound"));
  }

  PropertyList moduleEntry(const std::string& id, const std::string& name) {
    const char* const keys[] = {"id", "identifier", "instance"};
    PropertyList entry = list(2, true);
    const PropertyList raw = PropertyList::string(id);
    if (chance(20)) {
      entry.setMember("rawValue", raw);
    } else {
      entry.setMember(keys[below(3)], dictionary({{"rawValue", raw}}));
    }
    entry.setMember("moduleId", PropertyList::string(name));
    return entry;
  }

  void addModules(Layout& layout) {
    for (std::size_t i = below(30); i > 0; --i) {
      const std::string id = "tile " + std::to_string(below(30));
      layout.modules.push_back(moduleEntry(id, "Module" + text()));
    }
    for (std::size_t i = below(3); i > 0; --i) {
      layout.modules.push_back(list(2, true));
      layout.modules.push_back(moduleEntry("nobody", "Sound"));
    }
  }

  void addControls(Layout& layout) {
    for (std::size_t i = below(6); i > 0; --i) {
      LayoutJson control = object(2);
      const std::string identities[] = {std::string(controlIdentity), "com.quorvane.mixer.controls",
                                        encodeBase64("org.example.controls" + text()), text()};
      control["ControlIdentity"] = chance(90) ? LayoutJson(identities[below(4)]) : value(2);
      control["Identifier"] =
          chance(90) ? LayoutJson{"tile " + std::to_string(below(30)), text()} : value(2);
      layout.controls.push_back(control);
    }
  }

  std::mt19937 random_;
};

}  // namespace plemora
