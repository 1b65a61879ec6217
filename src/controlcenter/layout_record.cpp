#include "controlcenter/layout_record.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "base/base64.h"
#include "controlcenter/layout_elements.h"
#include "controlcenter/module_entries.h"

namespace plemora {

namespace {

using Layout = ControlCenterLayout::Layout;
using Failure = ControlCenterLayout::Failure;

constexpr const char* grid = "grid";
constexpr const char* elementsMember = "elements";
constexpr const char* displayablesData = "displayablesData";
constexpr const char* occupiedLocations = "occupiedLocations";
constexpr const char* controlsMember = "Controls";
constexpr const char* instanceIds = "instanceIds";
constexpr const char* chronoControlsMember = "chronoControls";
constexpr const char* modulesMember = "modules";

/// The value, or the failure of a layout that is not what it should be.
template <class Value>
decltype(auto) expected(Value&& value) {
  if (!value) {
    throw Failure(Failure::unexpectedFormat);
  }
  return *std::forward<Value>(value);
}

LayoutDictionaries dictionaries(const LayoutJson* value) {
  if (!value || !value->is_array() ||
      !std::ranges::all_of(*value, [](const LayoutJson& item) { return item.is_object(); })) {
    throw Failure(Failure::unexpectedFormat);
  }
  return {value->begin(), value->end()};
}

PropertyList::Array dictionaries(const PropertyList& value) {
  PropertyList::Array items = expected(value.items());
  if (!std::ranges::all_of(items, &PropertyList::isDictionary)) {
    throw Failure(Failure::unexpectedFormat);
  }
  return items;
}

/// A list within the displayables that is itself the bytes of a property list.
PropertyList::Array nestedDictionaries(const PropertyList& displayables, const char* key) {
  return dictionaries(PropertyList::parse(expected(expected(displayables.member(key)).asData())));
}

PropertyList nestedData(const PropertyList::Array& items) {
  return PropertyList::data(PropertyList::array(items).binary());
}

void decodeBoxes(Layout& layout, const std::string& bytes) {
  const LayoutJson boxes = parseLayoutJson(bytes);
  layout.boxes = dictionaries(&boxes);
  if (layout.boxes.empty()) {
    throw Failure(Failure::unexpectedFormat);
  }
  const LayoutJson& box = layout.boxes.front();
  layout.elements = dictionaries(layoutMember(expected(layoutMember(box, grid)), elementsMember));
  const LayoutJson& data = expected(layoutMember(box, displayablesData));
  if (!data.is_string()) {
    throw Failure(Failure::unexpectedFormat);
  }
  layout.displayables =
      PropertyList::parse(expected(decodeBase64(data.get_ref<const std::string&>())));
  layout.instanceIDs = dictionaries(expected(layout.displayables.member(instanceIds)));
  layout.chronoControls = nestedDictionaries(layout.displayables, chronoControlsMember);
  layout.modules = nestedDictionaries(layout.displayables, modulesMember);
}

}  // namespace

Layout Layout::read(Preferences& preferences) {
  return decode(readStoredLayout(preferences));
}

Layout Layout::decode(const StoredLayout& stored) {
  Layout layout;
  decodeBoxes(layout, stored.boxes);
  layout.controlsRoot = parseLayoutJson(stored.controls);
  layout.controls = dictionaries(layoutMember(layout.controlsRoot, controlsMember));
  return layout;
}

void Layout::write(Preferences& preferences, StoreOrder order) const {
  writeStoredLayout(preferences, encode(), order);
}

StoredLayout Layout::encode() const {
  PropertyList shown = displayables;
  shown.setMember(instanceIds, PropertyList::array(instanceIDs));
  shown.setMember(chronoControlsMember, nestedData(chronoControls));
  shown.setMember(modulesMember, nestedData(modules));

  LayoutJson allBoxes = boxes;
  LayoutJson& box = allBoxes.front();
  box[grid][elementsMember] = elements;
  box[occupiedLocations] = occupiedCells(elements);
  box[displayablesData] = encodeBase64(shown.binary());

  LayoutJson root = controlsRoot;
  root[controlsMember] = controls;
  return {layoutJsonText(root), layoutJsonText(allBoxes)};
}

std::map<std::string, std::string> Layout::moduleNames() const {
  std::map<std::string, std::string> names;
  for (const PropertyList& module : modules) {
    if (const auto entry = readModuleEntry(module)) {
      names[entry->identifier] = entry->name;
    }
  }
  return names;
}

const LayoutJson* Layout::soundElement() const {
  const auto names = moduleNames();
  const auto found = std::ranges::find_if(elements, [&](const LayoutJson& element) {
    const auto name = names.find(elementID(element));
    return name != names.end() && name->second == soundModule;
  });
  return found == elements.end() ? nullptr : &*found;
}

std::set<std::string> Layout::mixerIdentifiers() const {
  std::set<std::string> identifiers;
  for (const LayoutJson& control : controls) {
    const LayoutJson* list =
        isMixerControl(control) ? layoutMember(control, "Identifier") : nullptr;
    if (!list || !list->is_array()) {
      continue;
    }
    for (const LayoutJson& identifier : *list) {
      if (identifier.is_string()) {
        identifiers.insert(identifier.get<std::string>());
      }
    }
  }
  return identifiers;
}

LayoutDictionaries Layout::mixerElements() const {
  const auto identifiers = mixerIdentifiers();
  LayoutDictionaries found;
  std::ranges::copy_if(elements, std::back_inserter(found), [&](const LayoutJson& element) {
    return identifiers.contains(elementID(element));
  });
  return found;
}

LayoutDictionaries Layout::occupiedCells(const LayoutDictionaries& elements) {
  constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
  LayoutDictionaries cells;
  for (const LayoutJson& element : elements) {
    const auto x = elementColumn(element);
    const auto y = elementRow(element);
    const TileSize size = elementSize(element);
    if (!x || !y || *x > most - size.columns || *y > most - size.rows) {
      continue;
    }
    for (std::int64_t i = 0; i < size.columns; ++i) {
      for (std::int64_t j = 0; j < size.rows; ++j) {
        cells.push_back({{"x", *x + i}, {"y", *y + j}});
      }
    }
  }
  return cells;
}

void Layout::removeMixer() {
  removeMixerElements();
  std::erase_if(controls, isMixerControl);
}

void Layout::removeMixerElements() {
  const auto identifiers = mixerIdentifiers();
  std::erase_if(elements, [&](const LayoutJson& element) {
    return identifiers.contains(elementID(element));
  });
}

void Layout::addMixer(const std::string& identifier, std::int64_t x, std::int64_t y) {
  elements.push_back(makeElement(identifier, x, y, "rect2x1"));
  controls.push_back(makeMixerControl(identifier));
}

void Layout::addSound(const std::string& identifier, std::int64_t y) {
  addSoundModule(modules, identifier, [this](const std::string& used) {
    return std::ranges::any_of(
        elements, [&](const LayoutJson& element) { return elementID(element) == used; });
  });
  elements.push_back(makeElement(identifier, 0, y, "rect4x1"));
}

}  // namespace plemora
