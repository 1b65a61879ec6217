#include "glass/glass_view.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "glass/backdrop_filter.h"
#include "glass/blend.h"
#include "glass/coverage.h"
#include "glass/glass_effect.h"
#include "glass/layer_renderer.h"
#include "glass/outline.h"
#include "glass/window_effect.h"

namespace plemora {

class GlassView::State : public std::enable_shared_from_this<State> {
 public:
  explicit State(MainQueue& main) : main_(main) {}
  ~State() { clearBackground(); }

  void clearBackground() {
    if (effect_) {
      effect_->detach();
    }
    if (system_) {
      system_->detach();
    }
    for (const Added& added : added_) {
      added.effect.effect()->detach();
    }
    effect_ = nullptr;
    system_ = nullptr;
    added_.clear();
  }

  std::shared_ptr<GlassEffect> showEffect(const EffectDescription& description) {
    clearBackground();
    return effect_ = makeEffect(description, [this] { changeGlass(); });
  }

  std::shared_ptr<GlassEffect> addEffect(const EffectDescription& description) {
    const auto revision = std::make_shared<std::uint64_t>(0);
    auto effect = makeEffect(description, [this, revision] {
      ++*revision;
      isGlassStale_ = true;
      change();
    });
    added_.push_back({WindowEffect(effect), revision});
    return effect;
  }

  std::shared_ptr<SystemGlass> showSystemGlass() {
    clearBackground();
    system_ = std::make_shared<SystemGlass>([this] { changeGlass(); });
    return system_;
  }

  /// The picture is no longer right; tells so, once until it has been told.
  void change() {
    isStale_ = true;
    if (std::exchange(isTelling_, true)) {
      return;
    }
    main_.async([weak = weak_from_this()] {
      if (const auto state = weak.lock()) {
        state->isTelling_ = false;
        if (state->isStale_ && state->changed_) {
          auto changed = state->changed_;  // it may set another one
          changed();
        }
      }
    });
  }

  /// What is below the layer is no longer right either.
  void changeGlass() {
    ++revision_;
    isGlassStale_ = true;
    change();
  }

  /// Where in the view everything is.
  Rect place() const { return container_.value_or(Rect{0, 0, size_.width, size_.height}); }
  /// The same as the effects see it.
  Rect bounds() const { return {0, 0, place().width, place().height}; }

  std::vector<std::shared_ptr<GlassEffect>> effects() const {
    std::vector<std::shared_ptr<GlassEffect>> all;
    if (effect_) {
      all.push_back(effect_);
    }
    for (const Added& added : added_) {
      all.push_back(added.effect.effect());
    }
    return all;
  }

  void resizeEffects() {
    for (const auto& effect : effects()) {
      effect->setBounds(bounds());
    }
  }

  std::optional<GlassLook> look() const {
    if (effect_) {
      return effect_->look();
    }
    return system_ ? std::optional(systemGlassLook(system_->options(), isDark_)) : std::nullopt;
  }

  void layoutIfNeeded() {
    // A copy: the delegate may show another background.
    for (const auto& effect : effects()) {
      effect->layoutIfNeeded();
    }
  }

  const Raster& render() {
    layoutIfNeeded();
    if (!std::exchange(isStale_, false)) {
      return picture_;
    }
    const int width = pixels(size_.width);
    const int height = pixels(size_.height);
    if (glass_.width() != width || glass_.height() != height) {
      glass_.reset(width, height);
      isGlassStale_ = true;
    }
    if (std::exchange(isGlassStale_, false)) {
      renderGlass();
    }
    picture_ = glass_;
    if (layer_) {
      LayerRenderer(scale_).render(*layer_, picture_, place().origin());
    }
    return picture_;
  }

  void forgetPixels() {
    filter_.forgetPixels();
    glass_ = {};
    picture_ = {};
    isStale_ = true;
  }

  int effectBlurCount() const {
    int count = 0;
    for (const Added& added : added_) {
      count += added.effect.blurCount();
    }
    return count;
  }

  MainQueue& main_;
  std::function<void()> changed_;
  std::shared_ptr<GlassEffect> effect_;
  std::shared_ptr<SystemGlass> system_;
  struct Added {
    WindowEffect effect;
    std::shared_ptr<std::uint64_t> revision;
  };
  std::vector<Added> added_;    // from the bottom
  std::uint64_t revision_ = 0;  // of the background
  std::shared_ptr<Layer> layer_;
  std::optional<Rect> container_;
  double containerRadius_ = 0;
  Size size_;
  double scale_ = 1;
  double tintStrength_ = 1;
  bool isDark_ = true;
  bool isInWindow_ = false;
  BackdropSource::Kind kind_ = BackdropSource::Kind::compositor;
  BackdropFilter filter_;

 private:
  int pixels(double points) const {
    return static_cast<int>(std::min(std::ceil(points * scale_), 1.0 * Raster::largestSide));
  }

  std::shared_ptr<GlassEffect> makeEffect(const EffectDescription& description,
                                          std::function<void()> changed) {
    auto effect = std::make_shared<GlassEffect>(description, isDark_, main_, std::move(changed));
    effect->setBounds(bounds());
    effect->setInWindow(isInWindow_);
    effect->setTintStrength(tintStrength_);
    return effect;
  }

  void renderGlass() {
    const auto look = this->look();
    if (!look) {
      glass_.fill(0);
      return;
    }
    const bool isOpaque = kind_ == BackdropSource::Kind::pixels && filter_.hasBackdrop();
    const PixelRect part = container_ ? pixelsOf(*container_) : glass_.bounds();
    if (isOpaque) {
      filter_.render(*look, scale_, part, glass_);
    } else {
      const bool isSeenThrough = kind_ == BackdropSource::Kind::compositor;
      glass_.fill(pixelFor(isSeenThrough ? look->translucent : look->opaque));
    }
    const Point origin = place().origin();
    if (effect_ && effect_->overlay()) {
      LayerRenderer(scale_).render(*effect_->overlay(), glass_, origin);
    }
    WindowEffect::Revisions below{revision_};
    for (Added& added : added_) {
      if (isOpaque) {
        added.effect.render(glass_, part, scale_, origin, below);
      }
      below.push_back(*added.revision);
    }
    clip();
  }

  void clip() {
    RoundedRect shape{place(), 0, true};
    if (container_) {
      shape.radius = containerRadius_;
    } else if (system_) {
      shape.radius = system_->cornerRadius();
    } else if (effect_->description().masksToBounds) {
      shape.radius = effect_->description().cornerRadius;
      shape.isContinuous = effect_->description().hasContinuousCorners;
    }
    Polygons outline;
    addOutline(outline, shape, {}, scale_);
    clipTo(glass_, coverageOf(outline, FillRule::nonZero, glass_.bounds()));
  }

  PixelRect pixelsOf(const Rect& rect) const {
    const int left = static_cast<int>(std::floor(std::clamp(rect.minX() * scale_, -1e6, 1e6)));
    const int top = static_cast<int>(std::floor(std::clamp(rect.minY() * scale_, -1e6, 1e6)));
    const int right = static_cast<int>(std::ceil(std::clamp(rect.maxX() * scale_, -1e6, 1e6)));
    const int bottom = static_cast<int>(std::ceil(std::clamp(rect.maxY() * scale_, -1e6, 1e6)));
    return PixelRect{left, top, right - left, bottom - top}.intersection(glass_.bounds());
  }

  Raster glass_;    // background and effects
  Raster picture_;  // and the layer
  bool isGlassStale_ = true;
  bool isStale_ = true;
  bool isTelling_ = false;
};

GlassView::GlassView(MainQueue& main) : state_(std::make_shared<State>(main)) {}

GlassView::~GlassView() = default;

void GlassView::clearBackground() {
  state_->clearBackground();
  state_->changeGlass();
}

std::shared_ptr<EffectView> GlassView::showEffect(const EffectDescription& description) {
  state_->changeGlass();
  return state_->showEffect(description);
}

std::shared_ptr<SystemGlassView> GlassView::showSystemGlass() {
  state_->changeGlass();
  return state_->showSystemGlass();
}

std::shared_ptr<EffectView> GlassView::addEffect(const EffectDescription& description) {
  state_->changeGlass();
  return state_->addEffect(description);
}

void GlassView::setContainer(const Rect& frame, double cornerRadius) {
  const Rect place = finiteOr0(frame);
  const double radius = std::max(finiteOr0(cornerRadius), 0.0);
  if (place == state_->container_ && radius == state_->containerRadius_) {
    return;
  }
  state_->container_ = place;
  state_->containerRadius_ = radius;
  state_->changeGlass();
  state_->resizeEffects();
}

void GlassView::setLayer(std::shared_ptr<Layer> layer) {
  state_->layer_ = std::move(layer);
  state_->change();
}

void GlassView::setSize(Size size) {
  size = {std::max(finiteOr0(size.width), 0.0), std::max(finiteOr0(size.height), 0.0)};
  if (size == state_->size_) {
    return;
  }
  state_->size_ = size;
  state_->changeGlass();
  state_->resizeEffects();
}

void GlassView::setScale(double scale) {
  const double valid = LayerRenderer(scale).scale();
  if (valid != state_->scale_) {
    state_->scale_ = valid;
    state_->changeGlass();
  }
}

void GlassView::setDark(bool isDark) {
  if (std::exchange(state_->isDark_, isDark) == isDark) {
    return;
  }
  state_->changeGlass();
  for (const auto& effect : state_->effects()) {
    effect->setDark(isDark);
  }
}

void GlassView::setInWindow(bool isInWindow) {
  state_->isInWindow_ = isInWindow;
  for (const auto& effect : state_->effects()) {
    effect->setInWindow(isInWindow);
  }
}

void GlassView::setTintStrength(double strength) {
  state_->tintStrength_ = strength;
  for (const auto& effect : state_->effects()) {
    effect->setTintStrength(strength);
  }
  state_->changeGlass();
}

void GlassView::setBackdropKind(BackdropSource::Kind kind) {
  if (std::exchange(state_->kind_, kind) != kind) {
    state_->changeGlass();
  }
}

void GlassView::setBackdrop(BackdropImage image, const Rect& covers) {
  state_->filter_.setBackdrop(std::move(image), covers);
  state_->changeGlass();
}

double GlassView::backdropMargin() const {
  state_->layoutIfNeeded();
  const auto look = state_->look();
  return look ? BackdropFilter::reach(*look, state_->scale_) : 0;
}

void GlassView::setChangeHandler(std::function<void()> changed) {
  state_->changed_ = std::move(changed);
}

const Raster& GlassView::render() {
  return state_->render();
}

void GlassView::forgetPixels() {
  state_->forgetPixels();
}

int GlassView::blurCount() const {
  return state_->filter_.blurCount();
}

int GlassView::effectBlurCount() const {
  return state_->effectBlurCount();
}

}  // namespace plemora
