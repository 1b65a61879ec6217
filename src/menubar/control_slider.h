#pragma once

#include <functional>
#include <string>

#include "base/color.h"
#include "base/geometry.h"
#include "skin/look/control_center_look.h"

namespace plemora {

/// Size of a slider's knob and thickness of its track, in points, as its row hands them in.
struct SliderShape {
  Size knob;
  double trackHeight = 0;

  bool operator==(const SliderShape&) const = default;
};

/// The shapes of the two kinds of slider in the panel of 308 points.
inline constexpr SliderShape masterSliderShape{{22, 16}, 6};
inline constexpr SliderShape appSliderShape{{20, 14}, 6};

/// The capsule that is dragged.
struct SliderKnob {
  Size size;
  bool pressed = false;  ///< while dragging

  bool operator==(const SliderKnob&) const = default;
};

enum class SliderKey { up, down, left, right, pageUp, pageDown, home, end };

/// A horizontal volume slider: a capsule track, a fill up to the value, and a knob. Holds the rules
/// of its geometry, gestures and colours; a view draws it. Lengths in points, x from the slider's
/// leading edge. Main thread.
class ControlSlider {
 public:
  /// One step of keys, wheel and assistive technology, and a fine one.
  static constexpr float step = 0.0625f;
  static constexpr float fineStep = 0.01f;
  /// Of the Page keys.
  static constexpr float pageStep = 0.25f;
  static constexpr const char* label = "Volume";

  /// What the slider is bound to, 0...1. Whoever owns the value writes it here whenever it changes;
  /// what the user does is written here and told by onValueChanged.
  float value = 0;
  std::function<void(float value)> onValueChanged;
  bool isEnabled = true;
  bool isDimmed = false;
  /// True when a drag begins, false when it ends.
  std::function<void(bool isEditing)> onEditingChanged;
  Size knob = masterSliderShape.knob;
  double trackHeight = masterSliderShape.trackHeight;

  bool isDragging() const { return isDragging_; }
  bool isHovering() const { return isHovering_ && isEnabled; }
  SliderKnob sliderKnob() const { return {knob, isDragging_}; }

  /// How far the knob can move in a slider of that width; 1 at least.
  double travel(double width) const;
  /// Of the knob's leading edge.
  double knobOffset(double width) const;

  /// The pointer has been pressed, or moved while pressed, at x; the middle of the knob follows it.
  void drag(double x, double width);
  void endDrag();
  void setHovering(bool isInside) { isHovering_ = isInside; }

  void increment() { moveBy(step); }
  void decrement() { moveBy(-step); }
  /// Notches of the wheel, up is positive; parts of one count as they are. Fine: with Shift held.
  void turnWheel(double notches, bool isFine);
  /// Fine: with Shift held, which changes nothing for Home and End.
  void press(SliderKey key, bool isFine = false);
  /// Sets the value as a user does: clamped, ignored while disabled or when it is no number.
  void assign(double value);

  /// Of the whole slider.
  double opacity() const { return isEnabled ? 1.0 : 0.45; }
  static Color trackColor(const ControlCenterLook& look, bool isDark);
  Color fillColor(bool isDark) const;
  /// The value for people, such as "84 percent".
  std::string valueText() const;

 private:
  void moveBy(double change);

  bool isDragging_ = false;
  bool isHovering_ = false;
};

}  // namespace plemora
