#pragma once

#include <functional>

#include "base/geometry.h"

namespace plemora {

/// The system's list of AirPlay receivers. Main thread.
class RoutePicker {
 public:
  virtual ~RoutePicker() = default;

  /// Shows the list beside the given place (global, y up); once it has closed, calls the handler.
  virtual void present(const Rect& anchor, std::function<void()> didEnd) = 0;
};

}  // namespace plemora
