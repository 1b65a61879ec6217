#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "base/geometry.h"
#include "platform/input_events.h"
#include "platform/status_bar.h"

namespace plemora {

/// An item at the right of the menu bar: the program's, or an extra of the system.
struct StageStatusItem {
  std::string identifier{};  ///< for accessibility; empty: the program's
  std::int32_t pid = -1;     ///< of the process that it belongs to
  std::string ownerName{};
  std::string label{};  ///< for assistive technology
  std::string text{};   ///< shown instead of an image, such as the time
  std::optional<SymbolImage> image{};
  double width = 34;  ///< points
  bool isHighlighted = false;
  /// Distance of its right edge from that of the main screen; none: it stands left of what has one.
  std::optional<double> preferredPosition{};
  unsigned actionMask = leftMouseDownMask;  ///< InputEvent masks that make it act
  std::function<void(StatusButtonEvent)> clicked{};
  std::function<void(int steps)> scrolled{};

  std::int64_t number = 0;  ///< of its window
  Rect frame{};             ///< global, y up; the menu bar keeps it up to date
};

}  // namespace plemora
