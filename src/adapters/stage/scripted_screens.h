#pragma once

#include <functional>
#include <utility>
#include <vector>

#include "platform/screens.h"

namespace plemora {

/// Displays as a script has them; at first one of 1440 x 900 points with a menu bar of 24. Main
/// thread.
class ScriptedScreens : public Screens {
 public:
  ScriptedScreens() : screens_({Screen{1, {0, 0, 1440, 900}, {0, 0, 1440, 876}, 1, 60}}) {}

  void set(std::vector<Screen> screens) { screens_.set(std::move(screens)); }

  const Published<std::vector<Screen>>& screens() override { return screens_; }
  [[nodiscard]] Subscription observe(
      std::function<void(const std::vector<Screen>&)> observer) override {
    return screens_.subscribe(std::move(observer));
  }

 private:
  Published<std::vector<Screen>> screens_;
};

}  // namespace plemora
