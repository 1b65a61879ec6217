#include "skin/look/tuned_backdrop_view.h"

#include <algorithm>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace plemora {

namespace {

// The system's layers often appear only a few turns of the main loop after the view has entered
// its window.
constexpr int maximumRetries = 30;

// Above the backdrop, below what the system lays over it.
constexpr int overlayIndex = 1;

constexpr const char* gainFilterName = "mixerGain";
constexpr const char* gainFilterType = "colorMatrix";

ColorMatrix gainMatrix(double gain) {
  constexpr double limit = std::numeric_limits<float>::max();
  const auto g = static_cast<float>(std::clamp(gain, -limit, limit));
  return {g, 0, 0, 0, 0, 0, g, 0, 0, 0, 0, 0, g, 0, 0, 0, 0, 0, 1, 0};
}

}  // namespace

TunedBackdropView::TunedBackdropView(std::shared_ptr<EffectView> view, MainQueue& queue)
    : view_(std::move(view)), queue_(queue) {
  view_->setDelegate(this);
  view_->setNeedsLayout();
}

TunedBackdropView::~TunedBackdropView() {
  view_->setDelegate(nullptr);
  if (isOverlayShown_) {
    view_->setOverlay(nullptr, overlayIndex);
  }
}

void TunedBackdropView::setTuning(const Tuning& tuning) {
  if (tuning == tuning_) {
    return;
  }
  tuning_ = tuning;
  retries_ = 0;
  applyAgain();
}

void TunedBackdropView::viewDidMoveToWindow() {
  applyAgain();
}

void TunedBackdropView::viewDidChangeEffectiveAppearance() {
  applyAgain();
}

void TunedBackdropView::applyAgain() {
  applied_ = false;
  view_->setNeedsLayout();
}

void TunedBackdropView::layout() {
  applyIfNeeded();
  layOutOverlay();
}

void TunedBackdropView::applyIfNeeded() {
  if (applied_ || !view_->isInWindow()) {
    return;
  }
  const auto layer = view_->layer();
  if (!layer) {
    return;
  }
  applied_ = apply(*layer);
  if (applied_) {
    retries_ = 0;
  } else if (retries_ < maximumRetries) {
    ++retries_;
    queue_.async([this, life = std::weak_ptr(life_)] {
      if (!life.expired()) {
        applyIfNeeded();
      }
    });
  }
}

void TunedBackdropView::layOutOverlay() {
  if (tuning_.overlay) {
    overlayLayer_->frame = Rect{0, 0, view_->bounds().width, view_->bounds().height};
    overlayLayer_->backgroundColor = Color::gray(tuning_.overlay->gray, tuning_.overlay->alpha);
    view_->setOverlay(overlayLayer_, overlayIndex);
    isOverlayShown_ = true;
  } else if (isOverlayShown_) {
    view_->setOverlay(nullptr, overlayIndex);
    isOverlayShown_ = false;
  }
}

bool TunedBackdropView::apply(EffectLayer& layer) const {
  const std::string name = layer.name();
  bool found = false;
  if (name == "backdrop") {
    layer.setValue(tuning_.blurRadius, "filters.gaussianBlur.inputRadius");
    if (tuning_.margin && layer.respondsTo("setMarginWidth:")) {
      layer.setValue(*tuning_.margin, "marginWidth");
    }
    layer.setValue(tuning_.saturation, "filters.colorSaturate.inputAmount");
    if (tuning_.gain != 1.0 || tuning_.matrix) {
      addGain(layer);
    }
    found = true;
  } else if (name == "fill") {
    layer.setValue(tuning_.fillOpacity, "opacity");
  } else if (name == "tone") {
    layer.setValue(tuning_.toneOpacity, "opacity");
  } else if (name == "desktop tint") {
    layer.setValue(tuning_.hideDesktopTint ? 1 : 0, "hidden");
  }
  for (const auto& sublayer : layer.sublayers()) {
    found = apply(*sublayer) || found;
  }
  return found;
}

void TunedBackdropView::addGain(EffectLayer& layer) const {
  if (!layer.canMakeFilter(gainFilterType)) {
    return;
  }
  std::vector<EffectFilter> filters = layer.filters();
  std::erase_if(filters, [](const EffectFilter& filter) { return filter.name == gainFilterName; });
  filters.push_back(
      {gainFilterName, gainFilterType, tuning_.matrix.value_or(gainMatrix(tuning_.gain))});
  layer.setFilters(std::move(filters));
}

}  // namespace plemora
