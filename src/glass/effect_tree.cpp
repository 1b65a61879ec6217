#include "glass/effect_tree.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "glass/color_matrix.h"

namespace plemora {

namespace {

constexpr const char* blurKey = "filters.gaussianBlur.inputRadius";
constexpr const char* saturationKey = "filters.colorSaturate.inputAmount";
constexpr const char* marginKey = "marginWidth";
constexpr const char* opacityKey = "opacity";
constexpr const char* hiddenKey = "hidden";

constexpr const char* blurType = "gaussianBlur";
constexpr const char* saturationType = "colorSaturate";
constexpr const char* matrixType = "colorMatrix";

using Values = std::map<std::string, double, std::less<>>;

}  // namespace

struct EffectTree::Watcher {
  std::function<void()> changed;
};

/// A layer that knows the keys that it was made with.
class EffectTree::Node : public EffectLayer {
 public:
  Node(std::string name, Values values, std::weak_ptr<Watcher> watcher)
      : name_(std::move(name)), values_(std::move(values)), watcher_(std::move(watcher)) {}

  std::string name() override { return name_; }
  std::vector<std::shared_ptr<EffectLayer>> sublayers() override { return sublayers_; }

  void setValue(double value, const std::string& keyPath) override {
    const auto known = values_.find(keyPath);
    if (known == values_.end() || !std::isfinite(value) || known->second == value) {
      return;
    }
    known->second = value;
    tellChange();
  }

  bool respondsTo(const std::string& selector) override {
    return selector == "setMarginWidth:" && values_.contains(marginKey);
  }

  std::vector<EffectFilter> filters() override { return filters_; }

  void setFilters(std::vector<EffectFilter> filters) override {
    if (filters != filters_) {
      filters_ = std::move(filters);
      tellChange();
    }
  }

  bool canMakeFilter(const std::string& type) override {
    return type == blurType || type == saturationType || type == matrixType;
  }

  void add(std::shared_ptr<Node> sublayer) { sublayers_.push_back(std::move(sublayer)); }
  void makeFilters(std::vector<EffectFilter> filters) { filters_ = std::move(filters); }

  double value(std::string_view key) const {
    const auto found = values_.find(key);
    return found == values_.end() ? 0 : found->second;
  }
  /// How much of it is seen, 0...1.
  double visibility() const {
    return value(hiddenKey) != 0 ? 0 : std::clamp(value(opacityKey), 0.0, 1.0);
  }
  const std::vector<EffectFilter>& filterList() const { return filters_; }

 private:
  void tellChange() {
    if (const auto watcher = watcher_.lock()) {
      watcher->changed();
    }
  }

  std::string name_;
  Values values_;
  std::vector<EffectFilter> filters_;
  std::vector<std::shared_ptr<EffectLayer>> sublayers_;
  std::weak_ptr<Watcher> watcher_;
};

EffectTree::EffectTree(const Material& material, std::function<void()> changed)
    : watcher_(std::make_shared<Watcher>(Watcher{std::move(changed)})), material_(material) {
  const auto make = [&](const char* name, double opacity, Values more = {}) {
    more.merge(Values{{opacityKey, opacity}, {hiddenKey, 0}});
    return std::make_shared<Node>(name, std::move(more), watcher_);
  };
  backdrop_ = make("backdrop", 1,
                   {{blurKey, material.blurRadius},
                    {saturationKey, material.saturation},
                    {marginKey, material.margin}});
  backdrop_->makeFilters({{blurType, blurType, {}}, {saturationType, saturationType, {}}});
  fill_ = make("fill", material.fillOpacity);
  tone_ = make("tone", material.toneOpacity);
  desktopTint_ = make("desktop tint", 1);
  const auto group = make("", 1);
  for (const auto& part : {backdrop_, fill_, tone_, desktopTint_}) {
    group->add(part);
  }
  root_ = make("", 1);
  root_->add(group);
}

EffectTree::~EffectTree() = default;

std::shared_ptr<EffectLayer> EffectTree::root() const {
  return root_;
}

GlassLook EffectTree::look() const {
  GlassLook look{.blurRadius = 0,
                 .margin = std::max(backdrop_->value(marginKey), 0.0),
                 .matrix = identityMatrix,
                 .washes = {},
                 .desktopTint = 0,
                 .isDark = material_.isDark,
                 .translucent = material_.translucent,
                 .opaque = material_.opaque};
  for (const EffectFilter& filter : backdrop_->filterList()) {
    if (filter.type == blurType) {
      look.blurRadius = std::max(backdrop_->value(blurKey), 0.0);
    } else if (filter.type == saturationType) {
      look.matrix = chained(look.matrix, saturationMatrix(backdrop_->value(saturationKey)));
    } else if (filter.type == matrixType && isUsable(filter.inputColorMatrix)) {
      look.matrix = chained(look.matrix, filter.inputColorMatrix);
    }
  }
  const auto wash = [&](Color color, const Node& node) {
    color.alpha *= node.visibility();
    if (color.alpha > 0) {
      look.washes.push_back(color);
    }
  };
  wash(material_.fill, *fill_);
  wash(material_.tone, *tone_);
  look.desktopTint = material_.tintOpacity * desktopTint_->visibility();
  return look;
}

}  // namespace plemora
