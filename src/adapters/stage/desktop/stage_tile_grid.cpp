#include "adapters/stage/desktop/stage_tile_grid.h"

#include <algorithm>
#include <map>
#include <utility>

#include "adapters/stage/desktop/stage_control_identity.h"
#include "base/base64.h"

namespace plemora {

namespace {

using Json = nlohmann::ordered_json;

constexpr int farthest = 100;  // cell that a tile may stand in

/// The text below "rawValue"; empty when there is none.
std::string rawValue(const Json& holder, const char* key) {
  const auto found = holder.find(key);
  if (found == holder.end() || !found->is_object()) {
    return {};
  }
  return found->value("rawValue", std::string());
}

const StageTileSize* sizeNamed(std::string_view name) {
  const auto found = std::ranges::find(stageTileSizes, name, &StageTileSize::name);
  return found == stageTileSizes.end() ? nullptr : &*found;
}

/// Which module an entry stands for, and the element that shows it.
std::optional<std::pair<std::string, std::string>> moduleOf(const PropertyList& entry) {
  const auto name = entry.member("moduleId");
  if (!name || !name->asString()) {
    return std::nullopt;
  }
  for (const auto& [key, value] : entry.members()) {
    if (const auto id = value.member("rawValue"); id && id->asString()) {
      return std::pair(*id->asString(), *name->asString());
    }
  }
  return std::nullopt;
}

}  // namespace

std::optional<StageTileGrid> StageTileGrid::read(const std::string& boxes,
                                                 const std::string& controls, std::string& why) {
  StageTileGrid grid;
  try {
    grid.boxes_ = Json::parse(boxes);
    grid.controls_ = Json::parse(controls);
    const Json& box = grid.boxes_.at(0);
    why = "the boxes have no elements";
    if (!box.at("grid").at("elements").is_array() || !grid.controls_.at("Controls").is_array()) {
      return std::nullopt;
    }
    why = "the displayables cannot be read";
    const auto data = decodeBase64(box.at("displayablesData").get<std::string>());
    if (!data) {
      return std::nullopt;
    }
    grid.displayables_ = PropertyList::parse(*data);
    const auto modules = grid.displayables_.member("modules");
    const auto bytes = modules ? modules->asData() : std::nullopt;
    const auto items = bytes ? PropertyList::parse(*bytes).items() : std::nullopt;
    if (!items) {
      return std::nullopt;
    }
    grid.modules_ = *items;
    grid.findTiles();
  } catch (const std::exception& error) {
    why = error.what();
    return std::nullopt;
  }
  why.clear();
  return grid;
}

void StageTileGrid::findTiles() {
  std::map<std::string, std::string> modules;
  for (const PropertyList& entry : modules_) {
    if (auto module = moduleOf(entry)) {
      modules.insert(std::move(*module));
    }
  }
  std::map<std::string, StageTileControl> controls;
  for (const Json& control : controls_.at("Controls")) {
    // A control whose identity is in another form is shown all the same; nothing comes of pressing
    // it.
    auto identity = decodeControlIdentity(control.value("ControlIdentity", std::string()))
                        .value_or(StageTileControl());
    identity.displayName = control.value("DisplayName", std::string());
    for (const Json& id : control.value("Identifier", Json::array())) {
      controls[id.get<std::string>()] = identity;
    }
  }
  tiles_.clear();
  unknown_.clear();
  for (const Json& element : elements()) {
    StageTile tile{.id = rawValue(element, "id")};
    const Json location = element.value("location", Json::object());
    const Json size = element.value("size", Json::object());
    const auto* known = size.size() == 1 ? sizeNamed(size.begin().key()) : nullptr;
    if (known == nullptr || !location.contains("x") || !location.contains("y")) {
      continue;
    }
    tile.size = *known;
    tile.column = location["x"].get<int>();
    tile.row = location["y"].get<int>();
    if (tile.column < 0 || tile.column > farthest || tile.row < 0 || tile.row > farthest) {
      unknown_.push_back(tile.id);
      continue;
    }
    if (const auto module = modules.find(tile.id); module != modules.end()) {
      tile.module = module->second;
    } else if (const auto control = controls.find(tile.id); control != controls.end()) {
      tile.control = control->second;
    } else {
      unknown_.push_back(tile.id);
      continue;
    }
    tiles_.push_back(std::move(tile));
  }
}

const StageTile* StageTileGrid::tile(const std::string& id) const {
  const auto found = std::ranges::find(tiles_, id, &StageTile::id);
  return found == tiles_.end() ? nullptr : &*found;
}

const StageTile* StageTileGrid::module(std::string_view name) const {
  const auto found = std::ranges::find(tiles_, name, &StageTile::module);
  return found == tiles_.end() ? nullptr : &*found;
}

int StageTileGrid::rows() const {
  int rows = 0;
  for (const StageTile& tile : tiles_) {
    rows = std::max(rows, tile.row + tile.size.rows);
  }
  return rows;
}

std::vector<std::string> StageTileGrid::complaints() const {
  std::vector<std::string> found;
  for (const std::string& id : unknown_) {
    found.push_back("Nothing can be shown of element " + id);
  }
  const Json occupied = boxes_.empty() ? Json() : boxes_[0].value("occupiedLocations", Json());
  for (const StageTile& tile : tiles_) {
    if (tile.column + tile.size.columns > columns) {
      found.push_back(tile.name() + " sticks out of the grid");
    }
    if (std::ranges::count(tiles_, tile.id, &StageTile::id) > 1) {
      found.push_back(tile.name() + " is there twice with one identifier");
    }
    for (int column = tile.column; column < tile.column + tile.size.columns; ++column) {
      for (int row = tile.row; row < tile.row + tile.size.rows; ++row) {
        const Json cell{{"x", column}, {"y", row}};
        if (std::ranges::find(occupied, cell) == occupied.end()) {
          found.push_back(tile.name() + " stands where no cell is occupied");
        }
        for (const StageTile& other : tiles_) {
          if (&other < &tile && other.covers(column, row)) {
            found.push_back(tile.name() + " overlaps " + other.name());
          }
        }
      }
    }
  }
  return found;
}

bool StageTileGrid::isFree(const StageTile& place) const {
  if (place.column < 0 || place.row < 0 || place.column + place.size.columns > columns) {
    return false;
  }
  return std::ranges::none_of(tiles_, [&](const StageTile& other) {
    if (other.id == place.id) {
      return false;
    }
    for (int column = other.column; column < other.column + other.size.columns; ++column) {
      for (int row = other.row; row < other.row + other.size.rows; ++row) {
        if (place.covers(column, row)) {
          return true;
        }
      }
    }
    return false;
  });
}

Json* StageTileGrid::element(const std::string& id) {
  for (Json& candidate : elements()) {
    if (rawValue(candidate, "id") == id) {
      return &candidate;
    }
  }
  return nullptr;
}

bool StageTileGrid::remove(const std::string& id) {
  if (tile(id) == nullptr) {
    return false;
  }
  const auto isIt = [&](const Json& candidate) { return rawValue(candidate, "id") == id; };
  auto& all = elements().get_ref<Json::array_t&>();
  std::erase_if(all, isIt);
  std::erase_if(modules_, [&](const PropertyList& entry) {
    const auto module = moduleOf(entry);
    return module && module->first == id;
  });
  // A control leaves with the last of its tiles.
  std::erase_if(controls_["Controls"].get_ref<Json::array_t&>(), [&](Json& control) {
    const auto ids = control.find("Identifier");
    if (ids == control.end() || !ids->is_array()) {
      return false;
    }
    auto& array = ids->get_ref<Json::array_t&>();
    return std::erase(array, Json(id)) > 0 && array.empty();
  });
  changed();
  return true;
}

bool StageTileGrid::move(const std::string& id, int column, int row) {
  const StageTile* old = tile(id);
  if (old == nullptr) {
    return false;
  }
  StageTile wanted = *old;
  wanted.column = column;
  wanted.row = row;
  if (!isFree(wanted)) {
    return false;
  }
  (*element(id))["location"] = {{"x", column}, {"y", row}};
  changed();
  return true;
}

bool StageTileGrid::resize(const std::string& id, std::string_view size) {
  const StageTile* old = tile(id);
  const StageTileSize* known = sizeNamed(size);
  if (old == nullptr || known == nullptr) {
    return false;
  }
  StageTile wanted = *old;
  wanted.size = *known;
  if (!isFree(wanted)) {
    return false;
  }
  (*element(id))["size"] = Json{{std::string(size), Json::object()}};
  changed();
  return true;
}

bool StageTileGrid::place(const std::string& id, std::string_view size) {
  const StageTileSize* known = sizeNamed(size);
  if (known == nullptr || tile(id) != nullptr || boxes_.empty()) {
    return false;
  }
  StageTile wanted{.id = id, .size = *known};
  while (!isFree(wanted)) {
    if (++wanted.column + known->columns > columns) {
      wanted.column = 0;
      ++wanted.row;
    }
  }
  elements().push_back({{"id", {{"rawValue", id}}},
                        {"location", {{"x", wanted.column}, {"y", wanted.row}}},
                        {"size", {{std::string(size), Json::object()}}}});
  return true;
}

bool StageTileGrid::addModule(const std::string& name, const std::string& id,
                              std::string_view size) {
  if (!place(id, size)) {
    return false;
  }
  PropertyList identifier;
  identifier.setMember("rawValue", PropertyList::string(id));
  PropertyList entry;
  entry.setMember("identifier", identifier);
  entry.setMember("moduleId", PropertyList::string(name));
  modules_.push_back(std::move(entry));
  changed();
  return true;
}

bool StageTileGrid::addControl(const StageControlExtension& control, const std::string& id,
                               std::string_view size) {
  if (!place(id, size)) {
    return false;
  }
  controls_["Controls"].push_back({{"ControlIdentity", encodeControlIdentity(control)},
                                   {"ControlSize", 2},
                                   {"ControlType", 2},
                                   {"DisplayName", control.displayName},
                                   {"ControlDescription", control.description},
                                   {"Identifier", {id}},
                                   {"OverrideSizeForMenuBar", false},
                                   {"PromptsForUserConfiguration", false}});
  changed();
  return true;
}

void StageTileGrid::changed() {
  findTiles();
  displayables_.setMember("modules", PropertyList::data(PropertyList::array(modules_).binary()));
  boxes_[0]["displayablesData"] = encodeBase64(displayables_.binary());
  Json occupied = Json::array();
  for (const StageTile& tile : tiles_) {
    for (int column = tile.column; column < tile.column + tile.size.columns; ++column) {
      for (int row = tile.row; row < tile.row + tile.size.rows; ++row) {
        occupied.push_back({{"x", column}, {"y", row}});
      }
    }
  }
  boxes_[0]["occupiedLocations"] = std::move(occupied);
}

}  // namespace plemora
