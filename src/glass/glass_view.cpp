#include "glass/glass_view.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "glass/backdrop_filter.h"
#include "glass/blend.h"
#include "glass/coverage.h"
#include "glass/glass_effect.h"
#include "glass/layer_renderer.h"
#include "glass/outline.h"

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
    effect_ = nullptr;
    system_ = nullptr;
  }

  std::shared_ptr<GlassEffect> showEffect(const EffectDescription& description) {
    clearBackground();
    effect_ = std::make_shared<GlassEffect>(description, isDark_, main_, [this] { change(); });
    effect_->setBounds(bounds());
    effect_->setInWindow(isInWindow_);
    return effect_;
  }

  std::shared_ptr<SystemGlass> showSystemGlass() {
    clearBackground();
    system_ = std::make_shared<SystemGlass>([this] { change(); });
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

  Rect bounds() const { return {0, 0, size_.width, size_.height}; }

  std::optional<GlassLook> look() const {
    if (effect_) {
      return effect_->look();
    }
    return system_ ? std::optional(systemGlassLook(system_->options(), isDark_)) : std::nullopt;
  }

  void layoutIfNeeded() {
    // A copy: the delegate may show another background.
    if (const auto effect = effect_) {
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
    if (picture_.width() != width || picture_.height() != height) {
      picture_.reset(width, height);
    }
    if (const auto look = this->look()) {
      renderBackground(*look);
    } else {
      picture_.fill(0);
    }
    if (layer_) {
      LayerRenderer(scale_).render(*layer_, picture_);
    }
    return picture_;
  }

  MainQueue& main_;
  std::function<void()> changed_;
  std::shared_ptr<GlassEffect> effect_;
  std::shared_ptr<SystemGlass> system_;
  std::shared_ptr<Layer> layer_;
  Size size_;
  double scale_ = 1;
  bool isDark_ = true;
  bool isInWindow_ = false;
  BackdropSource::Kind kind_ = BackdropSource::Kind::compositor;
  BackdropFilter filter_;

 private:
  int pixels(double points) const {
    return static_cast<int>(std::min(std::ceil(points * scale_), 1.0 * Raster::largestSide));
  }

  void renderBackground(const GlassLook& look) {
    if (kind_ == BackdropSource::Kind::pixels && filter_.hasBackdrop()) {
      filter_.render(look, scale_, picture_);
    } else {
      const bool isSeenThrough = kind_ == BackdropSource::Kind::compositor;
      picture_.fill(pixelFor(isSeenThrough ? look.translucent : look.opaque));
    }
    if (effect_ && effect_->overlay()) {
      LayerRenderer(scale_).render(*effect_->overlay(), picture_);
    }
    RoundedRect shape{bounds(), 0, true};
    if (system_) {
      shape.radius = system_->cornerRadius();
    } else if (effect_->description().masksToBounds) {
      shape.radius = effect_->description().cornerRadius;
      shape.isContinuous = effect_->description().hasContinuousCorners;
    }
    Polygons outline;
    addOutline(outline, shape, {}, scale_);
    clipTo(picture_, coverageOf(outline, FillRule::nonZero, picture_.bounds()));
  }

  Raster picture_;
  bool isStale_ = true;
  bool isTelling_ = false;
};

GlassView::GlassView(MainQueue& main) : state_(std::make_shared<State>(main)) {}

GlassView::~GlassView() = default;

void GlassView::clearBackground() {
  state_->clearBackground();
  state_->change();
}

std::shared_ptr<EffectView> GlassView::showEffect(const EffectDescription& description) {
  state_->change();
  return state_->showEffect(description);
}

std::shared_ptr<SystemGlassView> GlassView::showSystemGlass() {
  state_->change();
  return state_->showSystemGlass();
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
  state_->change();
  if (state_->effect_) {
    state_->effect_->setBounds(state_->bounds());
  }
}

void GlassView::setScale(double scale) {
  const double valid = LayerRenderer(scale).scale();
  if (valid != state_->scale_) {
    state_->scale_ = valid;
    state_->change();
  }
}

void GlassView::setDark(bool isDark) {
  if (std::exchange(state_->isDark_, isDark) == isDark) {
    return;
  }
  state_->change();
  if (const auto effect = state_->effect_) {
    effect->setDark(isDark);
  }
}

void GlassView::setInWindow(bool isInWindow) {
  state_->isInWindow_ = isInWindow;
  if (const auto effect = state_->effect_) {
    effect->setInWindow(isInWindow);
  }
}

void GlassView::setBackdropKind(BackdropSource::Kind kind) {
  if (std::exchange(state_->kind_, kind) != kind) {
    state_->change();
  }
}

void GlassView::setBackdrop(BackdropImage image, const Rect& covers) {
  state_->filter_.setBackdrop(std::move(image), covers);
  state_->change();
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

int GlassView::blurCount() const {
  return state_->filter_.blurCount();
}

}  // namespace plemora
