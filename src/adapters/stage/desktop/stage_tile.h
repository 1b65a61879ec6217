#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace plemora {

/// A size that Control Center has tiles of, in cells.
struct StageTileSize {
  std::string_view name;
  int columns;
  int rows;
};

inline constexpr std::array<StageTileSize, 4> stageTileSizes{
    {{"square1x1", 1, 1}, {"rect2x1", 2, 1}, {"square2x2", 2, 2}, {"rect4x1", 4, 1}}};

/// What Control Center knows of a third party's control.
struct StageTileControl {
  std::string extensionID;
  std::string containerID;
  std::string kind;
  std::string displayName;
};

/// A tile of the grid.
struct StageTile {
  std::string id{};                           ///< of the element
  std::string module{};                       ///< such as "Sound"; empty: not the system's
  std::optional<StageTileControl> control{};  ///< of a third party
  int column = 0;
  int row = 0;
  StageTileSize size = stageTileSizes[0];

  /// As the user reads it.
  const std::string& name() const { return control ? control->displayName : module; }

  bool covers(int otherColumn, int otherRow) const {
    return otherColumn >= column && otherColumn < column + size.columns && otherRow >= row &&
           otherRow < row + size.rows;
  }
};

}  // namespace plemora
