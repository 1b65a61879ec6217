#include "views/slider_binding.h"

#include <cmath>
#include <optional>

#include "views/qt_values.h"

namespace plemora {

namespace {

constexpr double notch = 120;

/// Up and Down belong to the list of rows.
std::optional<SliderKey> sliderKey(int key) {
  switch (key) {
    case Qt::Key_Left:
      return SliderKey::left;
    case Qt::Key_Right:
      return SliderKey::right;
    case Qt::Key_PageUp:
      return SliderKey::pageUp;
    case Qt::Key_PageDown:
      return SliderKey::pageDown;
    case Qt::Key_Home:
      return SliderKey::home;
    case Qt::Key_End:
      return SliderKey::end;
    default:
      return std::nullopt;
  }
}

}  // namespace

SliderBinding::SliderBinding(QObject* parent) : QObject(parent) {
  slider_.onValueChanged = [this](float value) {
    emit valueChanged();
    emit geometryChanged();
    emit moved(static_cast<double>(value));
  };
  slider_.onEditingChanged = [this](bool isEditing) {
    emit changed();
    emit editingChanged(isEditing);
  };
}

void SliderBinding::setBoundValue(double value) {
  const auto position = static_cast<float>(value);
  if (position != slider_.value && std::isfinite(value)) {
    slider_.value = position;
    emit valueChanged();
    emit geometryChanged();
  }
}

void SliderBinding::setEnabled(bool isEnabled) {
  if (isEnabled != slider_.isEnabled) {
    slider_.isEnabled = isEnabled;
    emit changed();
  }
}

void SliderBinding::setDimmed(bool isDimmed) {
  if (isDimmed != slider_.isDimmed) {
    slider_.isDimmed = isDimmed;
    emit changed();
  }
}

void SliderBinding::setDark(bool isDark) {
  if (isDark != isDark_) {
    isDark_ = isDark;
    emit changed();
  }
}

void SliderBinding::setPointedAt(bool isPointedAt) {
  const bool before = slider_.isHovering();
  slider_.setHovering(isPointedAt);
  if (slider_.isHovering() != before) {
    emit changed();
  }
}

void SliderBinding::setKnob(const QSizeF& knob) {
  if (knob != this->knob()) {
    slider_.knob = {knob.width(), knob.height()};
    emit geometryChanged();
  }
}

void SliderBinding::setWidth(double width) {
  if (width != width_) {
    width_ = width;
    emit geometryChanged();
  }
}

QColor SliderBinding::fillColor() const {
  return toQColor(slider_.fillColor(isDark_));
}

bool SliderBinding::turnWheel(const QPointF& angleDelta, int modifiers) {
  // Some platforms turn the wheel sideways while a modifier is held.
  const double angle = angleDelta.y() != 0 ? angleDelta.y() : angleDelta.x();
  if (!slider_.isEnabled || angle == 0) {
    return false;
  }
  slider_.turnWheel(angle / notch, (modifiers & Qt::ShiftModifier) != 0);
  return true;
}

bool SliderBinding::pressKey(int key, int modifiers) {
  const std::optional<SliderKey> known = sliderKey(key);
  const int others = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
  if (!slider_.isEnabled || !known || (modifiers & others) != 0) {
    return false;
  }
  slider_.press(*known, (modifiers & Qt::ShiftModifier) != 0);
  return true;
}

}  // namespace plemora
