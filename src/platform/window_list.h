#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/geometry.h"

namespace plemora {

/// Level of menu bar items (CGWindowLevelForKey(kCGStatusWindowLevelKey)).
inline constexpr int statusWindowLevel = 25;

/// A window of any application as the window server tells of it; what it does not tell is none.
struct WindowInfo {
  std::int64_t number = 0;
  std::int32_t ownerPid = -1;
  std::optional<std::string> ownerName;
  std::optional<int> layer;
  std::optional<Rect> bounds;  ///< points, y down from the top left corner of the main screen
  std::optional<double> alpha;

  bool operator==(const WindowInfo&) const = default;
};

/// Main thread.
class WindowList {
 public:
  virtual ~WindowList() = default;

  /// Front to back; empty when the window server does not answer.
  virtual std::vector<WindowInfo> onScreenWindows() = 0;
};

}  // namespace plemora
