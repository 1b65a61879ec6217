#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/stage/desktop/stage_extensions.h"
#include "adapters/stage/desktop/stage_tile.h"
#include "base/property_list.h"

namespace plemora {

/// The layout that Control Center keeps in its two preference values, as that process sees it. What
/// it does not know it keeps. Main thread.
class StageTileGrid {
 public:
  static constexpr int columns = 4;

  StageTileGrid() = default;

  /// Reads both values. None when it does not understand one; why says in what.
  static std::optional<StageTileGrid> read(const std::string& boxes, const std::string& controls,
                                           std::string& why);

  /// Those with a known size and place, and something to show, in the order of the layout.
  const std::vector<StageTile>& tiles() const { return tiles_; }
  const StageTile* tile(const std::string& id) const;
  const StageTile* module(std::string_view name) const;
  int rows() const;  ///< that tiles stand in

  /// What is wrong with the layout: tiles that overlap or stick out, elements that nothing is known
  /// of, controls without a tile. Empty: nothing.
  std::vector<std::string> complaints() const;

  // What the user does in edit mode. False when it cannot be done: then nothing has changed.
  bool remove(const std::string& id);
  bool move(const std::string& id, int column, int row);
  bool resize(const std::string& id, std::string_view size);
  /// Puts a tile into the first free place.
  bool addModule(const std::string& name, const std::string& id, std::string_view size);
  bool addControl(const StageControlExtension& control, const std::string& id,
                  std::string_view size);

  // The two preference values as they would be stored now.
  std::string boxesValue() const { return boxes_.dump(); }
  std::string controlsValue() const { return controls_.dump(); }

 private:
  using Json = nlohmann::ordered_json;

  Json& elements() { return boxes_.at(0).at("grid").at("elements"); }
  Json* element(const std::string& id);
  void findTiles();
  bool isFree(const StageTile& place) const;
  /// Adds an element at the first free place.
  bool place(const std::string& id, std::string_view size);
  /// Brings the tiles, and what follows from them, up to date.
  void changed();

  Json boxes_ = Json::array();
  Json controls_ = Json::object();
  PropertyList displayables_;
  PropertyList::Array modules_;
  std::vector<StageTile> tiles_;
  std::vector<std::string> unknown_;  // ids of elements that show nothing known
};

}  // namespace plemora
