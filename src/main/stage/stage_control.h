#pragma once

#include <optional>
#include <string>

#include "base/geometry.h"

namespace plemora {

/// A control of a view as assistive technology finds it.
struct StageControl {
  std::string name;
  Rect frame;                   ///< global, y up; of a slider, from its least value to its largest
  std::optional<double> value;  ///< of a slider, 0...1
};

}  // namespace plemora
