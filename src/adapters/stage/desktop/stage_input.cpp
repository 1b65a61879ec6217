#include "adapters/stage/desktop/stage_input.h"

#include <algorithm>

namespace plemora {

namespace {

unsigned bit(StageButton button) {
  return 1u << static_cast<unsigned>(button);
}

/// What monitors are told of a press; the middle button is none of those that they can name.
std::optional<InputEventType> pressType(StageButton button) {
  switch (button) {
    case StageButton::left:
      return InputEventType::leftMouseDown;
    case StageButton::right:
      return InputEventType::rightMouseDown;
    case StageButton::middle:
      break;
  }
  return std::nullopt;
}

Point positionIn(const Rect& frame, const Point& location) {
  return {location.x - frame.minX(), frame.maxY() - location.y};
}

}  // namespace

bool StageInput::isProgram(const StageWindowRecord& window) const {
  return window.ownerPid >= 0 && window.ownerPid == programPid_();
}

bool StageInput::passesMonitors(const InputEvent& event, bool isForProgram) {
  if (isForProgram) {
    return !sendHere(event);
  }
  sendElsewhere(event);
  return true;
}

std::optional<StageWindowRecord> StageInput::current(std::int64_t number) {
  const auto all = server_.records();
  const auto found = std::ranges::find(all, number, &StageWindowRecord::number);
  return found == all.end() ? std::nullopt : std::optional(*found);
}

void StageInput::deliver(const StageWindowRecord& window, StagePointerEvent::Phase phase,
                         StageButton button) {
  window.owner->pointer(window, {phase, button, pointer, positionIn(window.frame, pointer)});
}

bool StageInput::reportMove(const std::optional<StageWindowRecord>& window) {
  const bool isDrag = (pressedButtons & leftMouseButton) != 0;
  if (!isDrag && pressedButtons != 0) {
    return true;  // a drag of another button: nobody can ask for it
  }
  const auto type = isDrag ? InputEventType::leftMouseDragged : InputEventType::mouseMoved;
  return passesMonitors({type, 0, pointer}, window && isProgram(*window));
}

void StageInput::movePointer(const Point& location) {
  pointer = location;
  if (grabbed_) {
    const auto grabbed = current(grabbed_->number);
    const bool isSeen = reportMove(grabbed_);
    const auto window = wasSwallowed_ || !isSeen ? std::nullopt : grabbed;
    if (window) {
      deliver(*window, StagePointerEvent::Phase::dragged, grabButton_);
    }
    return;
  }
  const auto hit = server_.hit(location);
  if (entered_ && (!hit || hit->number != entered_->number)) {
    if (const auto window = current(entered_->number)) {
      deliver(*window, StagePointerEvent::Phase::left, StageButton::left);
    }
  }
  entered_ = hit;
  if (reportMove(hit) && hit && current(hit->number)) {
    deliver(*hit, StagePointerEvent::Phase::moved, StageButton::left);
  }
}

void StageInput::press(StageButton button) {
  pressedButtons |= bit(button);
  const auto hit = server_.hit(pointer);
  // The owners hear of it first: a menu that is open takes the press away.
  for (StageWindowOwner* owner : server_.owners()) {
    if ((!hit || hit->owner != owner) && owner->pressedElsewhere(hit ? &*hit : nullptr)) {
      return;
    }
  }
  grabbed_ = hit;
  grabButton_ = button;
  const auto type = pressType(button);
  wasSwallowed_ = type && !passesMonitors({*type, 0, pointer}, hit && isProgram(*hit));
  // A monitor may have taken the window away.
  const auto window = hit && !wasSwallowed_ ? current(hit->number) : std::nullopt;
  if (window) {
    deliver(*window, StagePointerEvent::Phase::pressed, button);
  }
}

void StageInput::release(StageButton button) {
  pressedButtons &= ~bit(button);
  const auto grabbed = std::exchange(grabbed_, std::nullopt);
  const auto window = grabbed && !wasSwallowed_ ? current(grabbed->number) : std::nullopt;
  const bool isSeen =
      button != StageButton::left ||
      passesMonitors({InputEventType::leftMouseUp, 0, pointer}, grabbed && isProgram(*grabbed));
  if (isSeen && window) {
    deliver(*window, StagePointerEvent::Phase::released, button);
  }
  if (button == StageButton::left && onReleased) {
    onReleased();
  }
}

void StageInput::scroll(double dx, double dy, int steps) {
  if (const auto hit = server_.hit(pointer)) {
    hit->owner->scroll(*hit, {pointer, positionIn(hit->frame, pointer), dx, dy, steps});
  }
}

StageWindowOwner* StageInput::keyboardOwner() {
  const auto& owners = server_.owners();
  const auto last = std::ranges::max_element(owners, {}, &StageWindowOwner::keyOrder);
  return last == owners.end() || (*last)->keyOrder() == 0 ? nullptr : *last;
}

void StageInput::postKey(int keyCode) {
  ScriptedInputEvents::postKey(keyCode);
  key(keyCode);
}

void StageInput::key(int keyCode, const std::string& text, unsigned modifiers) {
  StageWindowOwner* owner = keyboardOwner();
  const bool isForProgram = owner != nullptr && owner->isProgram();
  if (!passesMonitors({InputEventType::keyDown, keyCode, pointer}, isForProgram)) {
    return;
  }
  // Asked anew, since a monitor may have closed what had the keyboard.
  owner = keyboardOwner();
  if (owner != nullptr) {
    owner->key({true, keyCode, text, modifiers});
  }
  owner = keyboardOwner();
  if (owner != nullptr) {
    owner->key({false, keyCode, text, modifiers});
  }
}

}  // namespace plemora
