#include "menubar/control_slider.h"

#include <algorithm>
#include <cmath>

#include "skin/look/glass_fill.h"

namespace plemora {

double ControlSlider::travel(double width) const {
  return std::max(width - knob.width, 1.0);
}

double ControlSlider::knobOffset(double width) const {
  return travel(width) * static_cast<double>(value);
}

void ControlSlider::drag(double x, double width) {
  if (!isEnabled) {
    return;
  }
  if (!isDragging_) {
    isDragging_ = true;
    if (onEditingChanged) {
      onEditingChanged(true);
    }
  }
  assign((x - knob.width / 2) / travel(width));
}

void ControlSlider::endDrag() {
  if (!isDragging_) {
    return;
  }
  isDragging_ = false;
  if (onEditingChanged) {
    onEditingChanged(false);
  }
}

void ControlSlider::turnWheel(double notches, bool isFine) {
  moveBy(notches * static_cast<double>(isFine ? fineStep : step));
}

void ControlSlider::press(SliderKey key, bool isFine) {
  const double keyStep = static_cast<double>(isFine ? fineStep : step);
  switch (key) {
    case SliderKey::up:
    case SliderKey::right:
      return moveBy(keyStep);
    case SliderKey::down:
    case SliderKey::left:
      return moveBy(-keyStep);
    case SliderKey::pageUp:
      return moveBy(static_cast<double>(pageStep));
    case SliderKey::pageDown:
      return moveBy(-static_cast<double>(pageStep));
    case SliderKey::home:
      return assign(0);
    case SliderKey::end:
      return assign(1);
  }
}

void ControlSlider::moveBy(double change) {
  assign(static_cast<double>(value) + change);
}

void ControlSlider::assign(double wanted) {
  if (!isEnabled || std::isnan(wanted)) {
    return;
  }
  value = static_cast<float>(std::clamp(wanted, 0.0, 1.0));
  if (onValueChanged) {
    onValueChanged(value);
  }
}

Color ControlSlider::trackColor(const ControlCenterLook& look, bool isDark) {
  if (!look.isModern()) {
    return Color::black(isDark ? 0.32 : 0.1);
  }
  return Color::white(look.tuning("track").value_or(look.release() == "27" ? 0.083 : 0.14));
}

Color ControlSlider::fillColor(bool isDark) const {
  Color color = GlassFill::resolve(isDark);
  color.alpha = isDimmed ? 0.35 : isDark ? 0.95 : 0.62;
  return color;
}

std::string ControlSlider::valueText() const {
  return std::to_string(std::llround(value * 100)) + " percent";
}

}  // namespace plemora
