#pragma once

#include <optional>
#include <stop_token>
#include <vector>

#include "base/geometry.h"
#include "platform/accessibility.h"

namespace plemora {

/// The program's tiles in Control Center's windows, from left to right. Asks Control Center about
/// every element, which takes its time: any thread but the main one. However many elements there
/// are, and whichever way they list each other, it comes to an end; being told to stop, it does so
/// at the next element.
std::vector<AccessibilityElementPointer> findTiles(AccessibilityElement& controlCenter,
                                                   const std::stop_token& stop);

/// Where the tiles are, in points, y down from the top left corner of the primary screen. None when
/// one of them has no frame, or none that a tile on a screen can have.
std::optional<std::vector<Rect>> tileFrames(const std::vector<AccessibilityElementPointer>& tiles);

}  // namespace plemora
