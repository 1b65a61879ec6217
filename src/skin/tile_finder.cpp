#include "skin/tile_finder.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <string>
#include <utility>

#include "controlcenter/accessibility_helpers.h"
#include "controlcenter/mixer_control.h"

namespace plemora {

namespace {

constexpr int deepest = 5;
// Far more than Control Center has. A tree that lists its elements in circles has no end.
constexpr int mostElements = 20'000;
constexpr std::size_t mostTiles = 32;
// Points. Beyond them no screen can be.
constexpr double farthest = 1'000'000;
constexpr double largest = 20'000;
// Less than a pixel; added to where it is, it would get lost.
constexpr double smallest = 0.1;

class Search {
 public:
  explicit Search(const std::stop_token& stop) : stop_(stop) {}

  void walk(const AccessibilityElementPointer& element, int depth) {
    if (isOver()) {
      return;
    }
    --elementsLeft_;
    const auto identifier = accessibility::string(*element, "AXIdentifier");
    if (identifier && identifier->find(mixerExtensionID) != std::string::npos) {
      tiles.push_back(element);
    } else if (depth < deepest) {
      for (const auto& child : accessibility::elements(*element, "AXChildren")) {
        if (isOver()) {
          return;
        }
        walk(child, depth + 1);
      }
    }
  }

  std::vector<AccessibilityElementPointer> tiles;

 private:
  bool isOver() const {
    return elementsLeft_ == 0 || tiles.size() == mostTiles || stop_.stop_requested();
  }

  const std::stop_token& stop_;
  int elementsLeft_ = mostElements;
};

/// Tiles without a place come last.
double leftEdge(AccessibilityElement& tile) {
  const auto frame = accessibility::frame(tile);
  return frame && !std::isnan(frame->minX()) ? frame->minX()
                                             : std::numeric_limits<double>::infinity();
}

/// False for NaN, too.
bool isBelievable(const Rect& frame) {
  return std::abs(frame.x) <= farthest && std::abs(frame.y) <= farthest &&
         frame.width >= smallest && frame.width <= largest && frame.height >= smallest &&
         frame.height <= largest;
}

}  // namespace

std::vector<AccessibilityElementPointer> findTiles(AccessibilityElement& controlCenter,
                                                   const std::stop_token& stop) {
  Search search(stop);
  for (const auto& window : accessibility::elements(controlCenter, "AXWindows")) {
    search.walk(window, 0);
  }
  std::vector<std::pair<double, AccessibilityElementPointer>> placed;
  for (auto& tile : search.tiles) {
    const double left = leftEdge(*tile);
    placed.emplace_back(left, std::move(tile));
  }
  std::ranges::stable_sort(placed, {}, [](const auto& tile) { return tile.first; });
  std::vector<AccessibilityElementPointer> tiles;
  for (auto& [left, tile] : placed) {
    tiles.push_back(std::move(tile));
  }
  return tiles;
}

std::optional<std::vector<Rect>> tileFrames(const std::vector<AccessibilityElementPointer>& tiles) {
  std::vector<Rect> frames;
  frames.reserve(tiles.size());
  for (const auto& tile : tiles) {
    const auto frame = accessibility::frame(*tile);
    if (!frame || !isBelievable(*frame)) {
      return std::nullopt;
    }
    frames.push_back(*frame);
  }
  return frames;
}

}  // namespace plemora
