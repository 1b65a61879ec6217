#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "controlcenter/layout_json.h"

namespace plemora {

/// How many cells a tile covers; both 0 for a size that this version does not know.
struct TileSize {
  std::int64_t columns = 0;
  std::int64_t rows = 0;
};

/// The identifier of an element; empty when it has none.
std::string elementID(const LayoutJson& element);

std::optional<std::int64_t> elementColumn(const LayoutJson& element);
std::optional<std::int64_t> elementRow(const LayoutJson& element);
TileSize elementSize(const LayoutJson& element);

/// A tile of one of the known sizes, by name.
LayoutJson makeElement(const std::string& identifier, std::int64_t x, std::int64_t y,
                       const char* size);

/// Whether a control is the program's.
bool isMixerControl(const LayoutJson& control);

/// The program's control for the tile with that identifier.
LayoutJson makeMixerControl(const std::string& identifier);

}  // namespace plemora
