#pragma once

#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/effect_view.h"

namespace plemora {

/// The system's own glass, which keeps what is set. Main thread.
class ScriptedSystemGlass : public SystemGlassView {
 public:
  /// Options that it has beside style and tint.
  std::set<std::string> selectors = {"set_variant:", "set_subduedState:", "set_scrimState:",
                                     "set_contentLensing:", "set_adaptiveAppearance:"};
  double cornerRadius = 0;
  std::optional<int> style;                         ///< none: never set
  std::vector<std::pair<std::string, int>> values;  ///< every one set, in order
  std::optional<Color> tint;                        ///< none: never set

  void setCornerRadius(double radius) override { cornerRadius = radius; }
  void setStyle(int value) override { style = value; }
  bool respondsTo(const std::string& selector) override { return selectors.contains(selector); }
  void setValue(int value, const std::string& key) override { values.emplace_back(key, value); }
  void setTintColor(const Color& color) override { tint = color; }
};

}  // namespace plemora
