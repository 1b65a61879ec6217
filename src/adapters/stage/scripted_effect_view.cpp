#include "adapters/stage/scripted_effect_view.h"

namespace plemora {

void ScriptedEffectView::moveToWindow(bool isInWindow) {
  isInWindow_ = isInWindow;
  if (delegate_) {
    delegate_->viewDidMoveToWindow();
  }
  setNeedsLayout();
}

void ScriptedEffectView::changeAppearance(ScriptedEffectLayer::Pointer made) {
  layers = std::move(made);
  if (delegate_) {
    delegate_->viewDidChangeEffectiveAppearance();
  }
}

void ScriptedEffectView::resize(const Rect& bounds) {
  bounds_ = bounds;
  setNeedsLayout();
}

void ScriptedEffectView::setNeedsLayout() {
  if (needsLayout_) {
    return;
  }
  needsLayout_ = true;
  queue_.async([this, life = std::weak_ptr(life_)] {
    if (life.expired()) {
      return;
    }
    needsLayout_ = false;
    ++layouts_;
    if (delegate_) {
      delegate_->layout();
    }
  });
}

}  // namespace plemora
