#include "skin/skin_overlay.h"

#include <algorithm>
#include <limits>
#include <string>
#include <utility>

#include "platform/clock.h"
#include "platform/screens.h"
#include "platform/user_defaults.h"
#include "skin/look/control_center_look.h"
#include "skin/seam_shapes.h"

namespace plemora {

namespace {

constexpr int noAnimation = 2;
constexpr unsigned collectionBehavior =
    windowCanJoinAllSpaces | windowStationary | windowIgnoresCycle | windowFullScreenAuxiliary;
constexpr int withinWindow = 1;

constexpr double glowFeather = 5.0;    // points
constexpr double glowDuration = 0.15;  // seconds
constexpr double rimPosition = 10.0;
constexpr double usualEdgeWidth = 2.0;  // points

/// Saturated and of no colour that is to be seen: only its saturation is taken.
constexpr Color seamSaturation{0.5, 0, 1, 1};

PanelWindowOptions optionsAt(int level) {
  PanelWindowOptions options;
  options.identifier = "skin";
  options.title = "Plemora";
  options.level = level;
  options.collectionBehavior = collectionBehavior;
  options.animationBehavior = noAnimation;
  options.ignoresMouseEvents = true;
  options.canBecomeKey = false;
  options.isDark = false;
  return options;
}

std::shared_ptr<Layer> makeLayer(std::string name) {
  auto layer = std::make_shared<Layer>();
  layer->name = std::move(name);
  return layer;
}

std::shared_ptr<Layer> makeShape(std::string name, double featherRadius) {
  auto layer = makeLayer(std::move(name));
  layer->featherRadius = featherRadius;
  layer->content = ShapeContent{.path = {},
                                .isEvenOdd = true,
                                .fill = Color::white(),
                                .stroke = std::nullopt,
                                .lineWidth = 1};
  return layer;
}

ShapeContent& shapeOf(Layer& layer) {
  return std::get<ShapeContent>(layer.content);
}

Rect boundsOf(const Size& size) {
  return {0, 0, size.width, size.height};
}

RoundedRect outlineOf(const Rect& rect) {
  return {rect, std::min(SkinOverlay::cornerRadius, rect.height / 2), true};
}

/// A backdrop that changes nothing but what its matrix says.
TunedBackdropView::Tuning plainTuning(const ColorMatrix& matrix) {
  TunedBackdropView::Tuning tuning;
  tuning.blurRadius = 0;
  tuning.saturation = 1;
  tuning.fillOpacity = 0;
  tuning.toneOpacity = 0;
  tuning.hideDesktopTint = true;
  tuning.matrix = matrix;
  tuning.margin = 0;
  return tuning;
}

}  // namespace

int SkinOverlay::levelAbove(int panelLevel) {
  return std::max(std::min(panelLevel, std::numeric_limits<int>::max() - 1) + 1,
                  popUpMenuWindowLevel);
}

SkinOverlay::SkinOverlay(const SkinServices& services, SkinState& state,
                         const MakeModuleView& makeView, const GlassStyle& style, int level)
    : services_(services),
      style_(style),
      glowStrength_(style.number("glow").value_or(0.045)),
      view_(makeView(state)),
      window_(services.windows.makePanel(optionsAt(level))),
      rim_(services.look.tuning("rimOuter").value_or(0.56),
           services.look.tuning("rimInner").value_or(0.18)) {
  PanelSurface& surface = window_->surface();
  backdrop_ = GlassStyle::make(cornerRadius, view_, style_, surface, services_.mainQueue);
  makePatches();
  makeBubbleCancel();
  makeLayers();
  if (services_.defaults.boolean("debugBareSkin").value_or(false)) {
    surface.setContents({});
  }
}

SkinOverlay::~SkinOverlay() = default;

void SkinOverlay::makePatches() {
  gapFix_ = makeFamily('g', "gapFixMask", 6.0, 4.0);
  gapCaps_ = makeFamily('c', "gapCapsMask", 2.0, 4.0);
  edgeSoften_ = makeFamily('e', "edgeSoftenMask", 5.0, 3.0);
  if (edgeSoften_) {
    ShapeContent& shape = shapeOf(*edgeSoften_->mask);
    shape.fill.reset();
    shape.stroke = Color::white();
    shape.lineWidth = style_.number("ew").value_or(usualEdgeWidth);
  }
}

SkinOverlay::Patch SkinOverlay::makePatch(const TunedBackdropView::Tuning& tuning,
                                          std::shared_ptr<Layer> mask) {
  EffectDescription description = TunedBackdropView::effect(cornerRadius);
  description.blendingMode = withinWindow;
  Patch patch;
  patch.effect = window_->surface().addEffect(description);
  patch.backdrop = std::make_unique<TunedBackdropView>(patch.effect, services_.mainQueue);
  patch.backdrop->setTuning(tuning);
  patch.mask = std::move(mask);
  patch.effect->setMask(patch.mask);
  return patch;
}

std::optional<SkinOverlay::Patch> SkinOverlay::makeFamily(char family, const char* maskName,
                                                          double radius, double feather) {
  const auto number = [&](char key, double usual) {
    return style_.number(std::string{family, key}).value_or(usual);
  };
  const auto matrix = style_.matrix(std::string{family, 'm'});
  if (!matrix) {
    return std::nullopt;
  }
  TunedBackdropView::Tuning tuning = plainTuning(*matrix);
  tuning.blurRadius = number('r', radius);
  tuning.margin = style_.has("margin") ? std::max(tuning.blurRadius * 3, 4.0) : 0;
  // Not clipped to the module: a feather would fade it out at the module's edges, too.
  auto mask = makeShape(maskName, number('f', feather));
  return makePatch(tuning, std::move(mask));
}

void SkinOverlay::makeBubbleCancel() {
  const auto set = style_.value("bc");
  if (!set) {
    return;
  }
  const BubbleCancel files(services_.defaults, services_.files, services_.resources);
  const auto strength =
      static_cast<float>(std::clamp(style_.number("bcr").value_or(1.0), 0.0, 1.0));
  for (BubbleCancel::Layer& layer : files.layers(*set, strength)) {
    auto mask = makeLayer("bubbleCancelMask");
    mask->content = std::move(layer.mask);
    bubbleCancel_.push_back(makePatch(plainTuning(layer.matrix), std::move(mask)));
  }
}

void SkinOverlay::makeLayers() {
  const double feather = style_.number("feather").value_or(8.0);
  lift_ = makeShape("lift", feather);
  lift_->opacity = style_.number("lift").value_or(0);
  seamLight_ = makeShape("seamLight", feather);
  seamLight_->opacity = 0;
  for (const auto& layer : {lift_, seamLight_}) {
    layer->blendMode = BlendMode::screen;
  }
  glow_ = makeShape("glow", glowFeather);
  glow_->opacity = 0;
  glowBounds_ = makeLayer("glowBounds");
  glowBounds_->cornerRadius = cornerRadius;
  glowBounds_->hasContinuousCorners = true;
  glowBounds_->masksToBounds = true;
  glowBounds_->sublayers = {glow_};
  // A plain group: its layers blend with the glass.
  seamPatch_ = makeLayer("seamPatch");
  seamPatch_->sublayers = {lift_, seamLight_};
  rim_.layer()->name = "rim";
  rim_.layer()->zPosition = rimPosition;
  root_ = makeLayer("skin");
  root_->sublayers = {seamPatch_, glowBounds_, rim_.layer()};
}

void SkinOverlay::setFrame(const Rect& frame) {
  if (window_->frame() != frame) {
    window_->setFrame(frame);
  }
}

double SkinOverlay::scale() {
  const auto& screens = services_.screens.screens().get();
  const Rect frame = window_->frame();
  const auto found = std::ranges::find_if(screens, [&frame](const Screen& screen) {
    return screen.frame.contains({frame.midX(), frame.midY()});
  });
  if (found != screens.end()) {
    return found->scale;
  }
  return screens.empty() ? 1 : screens.front().scale;
}

void SkinOverlay::updateSeam(const Size& size, const std::vector<Rect>& pills) {
  SeamKey key{size, pills, scale()};
  if (seamKey_ == key) {
    return;
  }
  const SeamShapes shapes(size, pills, cornerRadius);
  const double dilation = style_.number("dilate").value_or(0);
  // A feathered border is drawn back by its sigma, so that it ends about where the key says.
  const auto reach = [&](const std::optional<Patch>& patch) {
    return dilation - (patch ? patch->mask->featherRadius : 0);
  };
  setPath(gapFix_, size, shapes.seam(reach(gapFix_)));
  setPath(gapCaps_, size, shapes.caps(reach(gapCaps_)));
  setPath(edgeSoften_, size, shapes.edges());
  const Rect bounds = boundsOf(size);
  for (const Patch& patch : bubbleCancel_) {
    const double beyond = style_.number("bcx").value_or(0);
    patch.mask->frame = bounds.inset(-beyond, -beyond);
    patch.effect->setMask(patch.mask);
  }
  for (const auto& layer : {root_, seamPatch_, lift_, seamLight_, glow_, glowBounds_}) {
    layer->frame = bounds;
  }
  shapeOf(*lift_).path = shapeOf(*seamLight_).path = shapes.seam(dilation);
  rim_.update(size, cornerRadius, window_->surface().isFlipped(), key.scale);
  seamKey_ = std::move(key);
  showLayers();
}

void SkinOverlay::setPath(const std::optional<Patch>& patch, const Size& size,
                          std::vector<RoundedRect> path) {
  if (patch) {
    patch->mask->frame = boundsOf(size);
    shapeOf(*patch->mask).path = std::move(path);
    patch->effect->setMask(patch->mask);
  }
}

void SkinOverlay::tuneSeamForAppearance() {
  if (!style_.has("lift")) {
    return;
  }
  lift_->opacity = 0;
  if (gapFix_) {
    seamLight_->opacity = 0;
  } else if (services_.look.isModern() || services_.look.isDark()) {
    shapeOf(*seamLight_).fill = seamSaturation;
    seamLight_->blendMode = BlendMode::saturation;
    seamLight_->opacity = services_.look.tuning("seamSat").value_or(0.3);
    const double usualLift = services_.look.isModern() ? 0.0 : 0.05;
    lift_->opacity = services_.look.tuning("seamLift").value_or(usualLift);
  } else {
    shapeOf(*seamLight_).fill = Color::white();
    seamLight_->blendMode = BlendMode::normal;
    seamLight_->opacity = style_.number("liftLight").value_or(0.23);
  }
  showLayers();
}

void SkinOverlay::lightUp(const Rect& part) {
  shapeOf(*glow_).path = {outlineOf(part)};
  moveGlow(glowStrength_);
}

void SkinOverlay::dim() {
  moveGlow(0);
}

void SkinOverlay::moveGlow(double opacity) {
  glowAnimation_ = {services_.clock.mediaTime(), glow_->opacity, opacity};
  showLayers();
}

void SkinOverlay::endGlow() {
  glowAnimation_.reset();
  if (glow_->opacity != 0) {
    glow_->opacity = 0;
    showLayers();
  }
}

void SkinOverlay::animate() {
  if (!glowAnimation_) {
    return;
  }
  const auto [start, from, to] = *glowAnimation_;
  const double t = std::clamp((services_.clock.mediaTime() - start) / glowDuration, 0.0, 1.0);
  glow_->opacity = t < 1 ? from + (to - from) * t * t * (3 - 2 * t) : to;
  if (t >= 1) {
    glowAnimation_.reset();
  }
  showLayers();
}

}  // namespace plemora
