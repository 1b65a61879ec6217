#include "views/view_binding.h"

namespace plemora {

ViewBinding::ViewBinding(Appearance& appearance)
    : appearance_(appearance),
      isDark_(appearance.isDark()),
      subscription_(appearance.observe([this](bool isDark) {
        isDark_ = isDark;
        emit isDarkChanged();
      })) {}

void ViewBinding::setOpaque(bool isOpaque) {
  if (isOpaque != isOpaque_) {
    isOpaque_ = isOpaque;
    emit isOpaqueChanged();
  }
}

void ViewBinding::setVisible(bool isVisible) {
  if (isVisible == isVisible_) {
    return;
  }
  isVisible_ = isVisible;
  animates_ = isVisible && !appearance_.reducesMotion();
  emit animatesChanged();
  if (!isVisible) {
    setShowsFocus(false);
  }
}

void ViewBinding::setShowsFocus(bool showsFocus) {
  if (showsFocus != showsFocus_) {
    showsFocus_ = showsFocus;
    emit showsFocusChanged();
  }
}

void ViewBinding::updateMotion() {
  const bool animates = isVisible_ && !appearance_.reducesMotion();
  if (animates != animates_) {
    animates_ = animates;
    emit animatesChanged();
  }
}

}  // namespace plemora
