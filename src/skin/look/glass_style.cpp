#include "skin/look/glass_style.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "skin/look/style_numbers.h"

namespace plemora {

namespace {

struct Material {
  std::string_view name;
  int value;
};

// Raw values of NSVisualEffectView.Material.
constexpr std::array<Material, 12> materials{{
    {"titlebar", 3},
    {"menu", 5},
    {"popover", 6},
    {"sidebar", 7},
    {"headerView", 10},
    {"sheet", 11},
    {"windowBackground", 12},
    {"hudWindow", 13},
    {"fullScreenUI", 15},
    {"toolTip", 17},
    {"contentBackground", 18},
    {"underWindowBackground", 21},
}};
constexpr int menuMaterial = 5;

constexpr std::array<const char*, 5> glassOptions{"variant", "subduedState", "scrimState",
                                                  "contentLensing", "adaptiveAppearance"};

/// The numbers of a list; what is none is skipped.
template <typename Number>
std::vector<Number> parseList(std::string_view text, char separator,
                              std::optional<Number> (*parse)(std::string_view)) {
  std::vector<Number> numbers;
  for (const std::string_view piece : splitText(text, separator)) {
    if (const auto number = parse(piece)) {
      numbers.push_back(*number);
    }
  }
  return numbers;
}

}  // namespace

GlassStyle::GlassStyle(std::string_view style) {
  for (const std::string_view piece : splitText(style, ',')) {
    const auto [key, value] = splitPiece(piece);
    table_[std::string(key)] = value.value_or("");
  }
}

std::optional<std::string> GlassStyle::value(std::string_view key) const {
  const auto found = table_.find(key);
  return found == table_.end() ? std::nullopt : std::optional(found->second);
}

std::optional<double> GlassStyle::number(std::string_view key) const {
  return parseDouble(value(key).value_or(""));
}

std::optional<ColorMatrix> GlassStyle::matrix(std::string_view key) const {
  const std::string text = value(key).value_or("");
  const auto numbers = parseList(text, ':', parseFloat);
  ColorMatrix matrix{};
  if (numbers.size() != matrix.size()) {
    return std::nullopt;
  }
  std::ranges::copy(numbers, matrix.begin());
  return matrix;
}

std::optional<int> GlassStyle::material() const {
  const auto name = value("vev");
  if (!name) {
    return std::nullopt;
  }
  const auto found = std::ranges::find(materials, *name, &Material::name);
  return found == materials.end() ? menuMaterial : found->value;
}

TunedBackdropView::Tuning GlassStyle::tuning() const {
  TunedBackdropView::Tuning tuning;
  tuning.blurRadius = number("r").value_or(tuning.blurRadius);
  tuning.saturation = number("sat").value_or(tuning.saturation);
  tuning.fillOpacity = parseFloat(value("fill").value_or("")).value_or(tuning.fillOpacity);
  tuning.toneOpacity = parseFloat(value("tone").value_or("")).value_or(tuning.toneOpacity);
  tuning.gain = number("gain").value_or(tuning.gain);
  tuning.hideDesktopTint = has("notint");
  const std::string over = value("over").value_or("");
  if (const auto numbers = parseList(over, '/', parseDouble); numbers.size() == 2) {
    tuning.overlay = {numbers[0], numbers[1]};
  }
  tuning.matrix = matrix("m");
  tuning.margin = number("margin");
  return tuning;
}

std::unique_ptr<TunedBackdropView> GlassStyle::makeTunedBackdrop(double cornerRadius,
                                                                 PanelSurface& surface,
                                                                 MainQueue& queue) const {
  auto view = std::make_unique<TunedBackdropView>(
      surface.showEffect(TunedBackdropView::effect(cornerRadius)), queue);
  view->setTuning(tuning());
  return view;
}

void GlassStyle::apply(SystemGlassView& glass) const {
  if (const auto style = value("style")) {
    glass.setStyle(*style == "1" ? 1 : 0);
  }
  for (const std::string key : glassOptions) {
    const auto option = parseInteger(value(key).value_or(""));
    if (option && glass.respondsTo("set_" + key + ":")) {
      glass.setValue(*option, key);
    }
  }
  const std::string tint = value("tint").value_or("");
  if (const auto parts = parseList(tint, '.', parseDouble); parts.size() == 4) {
    // The alpha is written as 0 or 1, the colours up to 255.
    glass.setTintColor({parts[0] / 255, parts[1] / 255, parts[2] / 255, parts[3]});
  }
}

std::unique_ptr<TunedBackdropView> GlassStyle::make(double cornerRadius,
                                                    std::shared_ptr<HostedView> content,
                                                    const GlassStyle& style, PanelSurface& surface,
                                                    MainQueue& queue) {
  std::unique_ptr<TunedBackdropView> tuned;
  if (style.has("none")) {
    surface.clearBackground();
  } else if (style.has("cc")) {
    tuned = style.makeTunedBackdrop(cornerRadius, surface, queue);
  } else if (const auto material = style.material()) {
    EffectDescription effect = TunedBackdropView::effect(cornerRadius);
    effect.material = *material;
    surface.showEffect(effect);
  } else {
    const auto glass = surface.showSystemGlass();
    glass->setCornerRadius(cornerRadius);
    style.apply(*glass);
  }
  surface.setContent(std::move(content));
  return tuned;
}

}  // namespace plemora
