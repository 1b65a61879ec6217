#pragma once

#include <functional>

#include "base/published.h"

namespace plemora {

/// The look that the user has chosen for the system. Main thread.
class Appearance {
 public:
  virtual ~Appearance() = default;

  virtual bool isDark() = 0;
  /// Whether the user wants interfaces that keep still. Asked whenever something would move.
  virtual bool reducesMotion() = 0;
  [[nodiscard]] virtual Subscription observe(std::function<void(bool isDark)> observer) = 0;
};

}  // namespace plemora
