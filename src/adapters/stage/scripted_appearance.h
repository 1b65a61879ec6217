#pragma once

#include <functional>
#include <utility>

#include "platform/appearance.h"

namespace plemora {

/// The system's look as a script has it. Main thread.
class ScriptedAppearance : public Appearance {
 public:
  explicit ScriptedAppearance(bool isDark = true) : isDark_(isDark) {}

  /// The user chooses; observers hear of it at once.
  void setDark(bool isDark) { isDark_.set(isDark); }

  bool wantsStillness = false;

  bool reducesMotion() override { return wantsStillness; }
  bool isDark() override { return isDark_.get(); }
  [[nodiscard]] Subscription observe(std::function<void(bool isDark)> observer) override {
    return isDark_.subscribe(std::move(observer));
  }

 private:
  Published<bool> isDark_;
};

}  // namespace plemora
