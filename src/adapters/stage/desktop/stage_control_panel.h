#pragma once

#include <cstddef>
#include <utility>

#include "adapters/stage/desktop/stage_tile_grid.h"
#include "base/geometry.h"

namespace plemora {

/// Where things stand in Control Center's window. All rectangles global, y up.
struct StageControlPanel {
  static constexpr double width = 320;
  static constexpr double margin = 8;    ///< from the right edge of the screen, and below the bar
  static constexpr double padding = 14;  ///< around the grid
  static constexpr double cell = 64;
  static constexpr double pitch = 76;  ///< from one cell to the next
  static constexpr double buttonHeight = 28;
  static constexpr int minimumRows = 3;

  Rect window;                    ///< reaches the top of the screen
  Rect panel;                     ///< what is to be seen of it, below the menu bar
  Rect editButton;                ///< at the bottom
  double tileGap = pitch - cell;  ///< between two tiles of a row

  static StageControlPanel place(const Rect& screen, double menuBarHeight, int rows);

  Rect tile(const StageTile& tile) const;
  /// What is left free beside the track of a slider, in points.
  struct SliderRoom {
    double left = 34;
    double right = 16;
  };
  static constexpr double sliderMidY = 42;  ///< of a slider, below the top of its tile
  /// Of a tile with a slider, the part that takes it.
  static Rect slider(const Rect& tile, const SliderRoom& room);
  /// In edit mode, the badge that takes a tile away.
  static Rect removeBadge(const Rect& tile);
  /// Of a tile of two columns and more, the button that would show more of it.
  static Rect detailButton(const Rect& tile);
  /// Column and row of the cell nearest to the top left corner of a tile dragged to there.
  std::pair<int, int> cellAt(const Point& topLeft) const;
  /// In edit mode, the entries of the gallery of what can be added, on the screen left of the
  /// panel.
  static Rect galleryEntry(const Rect& screen, std::size_t index);
};

}  // namespace plemora
