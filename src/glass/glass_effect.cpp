#include "glass/glass_effect.h"

#include <utility>

namespace plemora {

GlassEffect::GlassEffect(const EffectDescription& description, bool isDark, MainQueue& main,
                         std::function<void()> changed)
    : description_(description), main_(&main), changed_(std::move(changed)), isDark_(isDark) {
  makeTree(isDark);
}

void GlassEffect::makeTree(bool isDark) {
  tree_ =
      std::make_unique<EffectTree>(material(description_.material, isDark), [this] { changed_(); });
}

void GlassEffect::setNeedsLayout() {
  if (needsLayout_ || !main_) {
    return;
  }
  needsLayout_ = true;
  main_->async([weak = weak_from_this()] {
    if (const auto effect = weak.lock()) {
      effect->layoutIfNeeded();
    }
  });
}

void GlassEffect::layoutIfNeeded() {
  if (!std::exchange(needsLayout_, false) || !main_ || !delegate_) {
    return;
  }
  delegate_->layout();
}

void GlassEffect::setOverlay(std::shared_ptr<Layer> overlay, int index) {
  // The effect's layers hide whatever is below them.
  overlay_ = index > 0 ? std::move(overlay) : nullptr;
  changed_();
}

void GlassEffect::setMask(std::shared_ptr<Layer> mask) {
  mask_ = std::move(mask);
  changed_();
}

GlassLook GlassEffect::look() const {
  GlassLook look = tree_->look();
  look.desktopTint *= tintStrength_;
  return look;
}

void GlassEffect::setBounds(const Rect& bounds) {
  if (bounds != bounds_) {
    bounds_ = bounds;
    setNeedsLayout();
  }
}

void GlassEffect::setInWindow(bool isInWindow) {
  if (std::exchange(isInWindow_, isInWindow) != isInWindow && delegate_) {
    delegate_->viewDidMoveToWindow();
  }
}

void GlassEffect::setDark(bool isDark) {
  if (std::exchange(isDark_, isDark) == isDark) {
    return;
  }
  makeTree(isDark);
  changed_();
  if (delegate_) {
    delegate_->viewDidChangeEffectiveAppearance();
  }
}

void GlassEffect::detach() {
  main_ = nullptr;
  changed_ = [] {};
}

void SystemGlass::setCornerRadius(double radius) {
  cornerRadius_ = radius;
  changed_();
}

void SystemGlass::setStyle(int style) {
  options_.style = style;
  changed_();
}

bool SystemGlass::respondsTo(const std::string& selector) {
  return selector == "set_subduedState:" || selector == "set_scrimState:";
}

void SystemGlass::setValue(int value, const std::string& key) {
  if (key == "subduedState") {
    options_.subduedState = value;
  } else if (key == "scrimState") {
    options_.scrimState = value;
  }
  changed_();
}

void SystemGlass::setTintColor(const Color& color) {
  options_.tint = color;
  changed_();
}

}  // namespace plemora
