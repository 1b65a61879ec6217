#pragma once

#include <functional>
#include <memory>

#include "base/geometry.h"

namespace plemora {

/// Kinds of events as bits; the values are those of NSEvent.EventTypeMask.
inline constexpr unsigned leftMouseDownMask = 1u << 1;
inline constexpr unsigned leftMouseUpMask = 1u << 2;
inline constexpr unsigned rightMouseDownMask = 1u << 3;
inline constexpr unsigned mouseMovedMask = 1u << 5;
inline constexpr unsigned leftMouseDraggedMask = 1u << 6;
inline constexpr unsigned keyDownMask = 1u << 10;

/// Virtual key code of Escape (Carbon's kVK_Escape).
inline constexpr int escapeKeyCode = 53;

/// Bit of the left button in InputEvents::pressedMouseButtons().
inline constexpr unsigned leftMouseButton = 1u << 0;

enum class InputEventType {
  leftMouseDown = 1,
  leftMouseUp = 2,
  rightMouseDown = 3,
  mouseMoved = 5,
  leftMouseDragged = 6,
  keyDown = 10,
};

struct InputEvent {
  InputEventType type = InputEventType::leftMouseDown;
  int keyCode = 0;  ///< of keyDown
  Point location;   ///< global, y up
};

/// Dropping it ends the monitoring, also from inside its handler.
class EventMonitor {
 public:
  virtual ~EventMonitor() = default;
};

/// The events of pointer and keyboard. Main thread.
class InputEvents {
 public:
  virtual ~InputEvents() = default;

  /// Reports events that go to other applications; they cannot be held back. Where the platform
  /// shows only some of them, some are reported.
  [[nodiscard]] virtual std::unique_ptr<EventMonitor> monitorGlobal(
      unsigned mask, std::function<void(const InputEvent&)> handler) = 0;

  /// Asked about events for this program's windows before they get them; true swallows one.
  [[nodiscard]] virtual std::unique_ptr<EventMonitor> monitorLocal(
      unsigned mask, std::function<bool(const InputEvent&)> handler) = 0;

  virtual Point pointerLocation() = 0;  ///< global, y up
  /// The buttons that are down now, as bits: left, right, middle.
  virtual unsigned pressedMouseButtons() = 0;

  /// Presses and lets go a key as if the user had done so, for whoever has the keyboard. Nothing
  /// happens where the platform does not let a program do that.
  virtual void postKey(int keyCode) = 0;
};

}  // namespace plemora
