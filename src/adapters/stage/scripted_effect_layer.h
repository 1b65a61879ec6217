#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/effect_view.h"

namespace plemora {

/// A layer of the system's visual effect, as a test builds it: keeps what is set. Main thread.
class ScriptedEffectLayer : public EffectLayer {
 public:
  using Pointer = std::shared_ptr<ScriptedEffectLayer>;

  explicit ScriptedEffectLayer(std::string name, std::vector<Pointer> sublayers = {})
      : name_(std::move(name)), sublayers_(std::move(sublayers)) {}

  /// What the system makes for a visual-effect view: an unnamed root with "backdrop", "fill",
  /// "tone" and "desktop tint" below it.
  static Pointer systemTree();

  std::map<std::string, double> values;  ///< by key path
  std::set<std::string> selectors = {"setMarginWidth:"};
  std::set<std::string> filterTypes = {"colorMatrix"};
  int writes = 0;  ///< of values and of filters

  /// The first layer of that name, here or below; null when there is none.
  ScriptedEffectLayer* find(const std::string& name);

  std::string name() override { return name_; }
  std::vector<std::shared_ptr<EffectLayer>> sublayers() override {
    return {sublayers_.begin(), sublayers_.end()};
  }
  void setValue(double value, const std::string& keyPath) override {
    values[keyPath] = value;
    ++writes;
  }
  bool respondsTo(const std::string& selector) override { return selectors.contains(selector); }
  std::vector<EffectFilter> filters() override { return filters_; }
  void setFilters(std::vector<EffectFilter> filters) override {
    filters_ = std::move(filters);
    ++writes;
  }
  bool canMakeFilter(const std::string& type) override { return filterTypes.contains(type); }

 private:
  std::string name_;
  std::vector<Pointer> sublayers_;
  std::vector<EffectFilter> filters_;
};

}  // namespace plemora
