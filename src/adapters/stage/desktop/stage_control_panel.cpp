#include "adapters/stage/desktop/stage_control_panel.h"

#include <algorithm>
#include <cmath>

namespace plemora {

StageControlPanel StageControlPanel::place(const Rect& screen, double menuBarHeight, int rows) {
  const double top = screen.maxY() - menuBarHeight - margin;
  const double grid = std::max(rows, minimumRows) * pitch - (pitch - cell);
  const double height =
      std::min(padding + grid + padding + buttonHeight + padding, top - screen.minY() - margin);
  StageControlPanel result;
  result.panel = {screen.maxX() - margin - width, top - height, width, height};
  result.window = {result.panel.x, result.panel.y, width, screen.maxY() - result.panel.y};
  const double buttonWidth = width - 8 * padding;
  result.editButton = {result.panel.midX() - buttonWidth / 2, result.panel.minY() + padding,
                       buttonWidth, buttonHeight};
  return result;
}

Rect StageControlPanel::tile(const StageTile& tile) const {
  const double tileHeight = tile.size.rows * pitch - (pitch - cell);
  return {panel.minX() + padding + tile.column * pitch,
          panel.maxY() - padding - tile.row * pitch - tileHeight,
          tile.size.columns * pitch - tileGap, tileHeight};
}

Rect StageControlPanel::slider(const Rect& tile, const SliderRoom& room) {
  constexpr double height = 24;
  return {tile.minX() + room.left, tile.maxY() - sliderMidY - height / 2,
          std::max(tile.width - room.left - room.right, 20.0), height};
}

Rect StageControlPanel::removeBadge(const Rect& tile) {
  return {tile.minX() - 8, tile.maxY() - 14, 22, 22};
}

Rect StageControlPanel::detailButton(const Rect& tile) {
  return {tile.maxX() - 28, tile.maxY() - 28, 20, 20};
}

std::pair<int, int> StageControlPanel::cellAt(const Point& topLeft) const {
  const double x = (topLeft.x - panel.minX() - padding) / pitch;
  const double y = (panel.maxY() - padding - topLeft.y) / pitch;
  return {static_cast<int>(std::lround(x)), static_cast<int>(std::lround(y))};
}

Rect StageControlPanel::galleryEntry(const Rect& screen, std::size_t index) {
  constexpr int columns = 4;
  constexpr double entryWidth = 160;
  constexpr double entryHeight = 56;
  constexpr double gap = 16;
  const auto column = static_cast<double>(index % columns);
  const auto row = static_cast<double>(index / columns);
  return {screen.minX() + 80 + column * (entryWidth + gap),
          screen.maxY() - 200 - row * (entryHeight + gap), entryWidth, entryHeight};
}

}  // namespace plemora
