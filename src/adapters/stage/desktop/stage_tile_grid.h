#pragma once

#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/stage/desktop/stage_extensions.h"
#include "adapters/stage/desktop/stage_tile.h"

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

  std::string boxesValue() const;
  std::string controlsValue() const;

 private:
  using Json = nlohmann::ordered_json;

  void findTiles();
  Json& elements() { return boxes_[0]["grid"]["elements"]; }
  bool isFree(const StageTile& place, const std::string& exceptID) const;
  bool place(const std::string& id, std::string_view size);
  void writeOccupied();

  Json boxes_ = Json::array();
  Json controls_ = Json::object();
  std::string displayables_;  // binary property list
  std::vector<StageTile> tiles_;
  std::vector<std::string> complaints_;  // of what could not be made a tile
};

}  // namespace plemora
