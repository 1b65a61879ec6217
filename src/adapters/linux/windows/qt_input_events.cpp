#include "adapters/linux/windows/qt_input_events.h"

#include <QCursor>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWindow>
#include <optional>
#include <utility>

#include "adapters/linux/windows/mac_key_codes.h"
#include "adapters/linux/windows/screen_space.h"

namespace plemora {

namespace {

std::optional<InputEvent> inputEvent(const QEvent& event) {
  InputEvent result;
  if (event.type() == QEvent::KeyPress) {
    result.type = InputEventType::keyDown;
    result.keyCode = macKeyCode(static_cast<const QKeyEvent&>(event).key());
    result.location = ScreenSpace::current().toGlobal(QPointF(QCursor::pos()));
    return result;
  }
  const bool isPress = event.type() == QEvent::MouseButtonPress;
  if (!isPress && event.type() != QEvent::MouseButtonRelease) {
    return std::nullopt;
  }
  const auto& mouse = static_cast<const QMouseEvent&>(event);
  if (mouse.button() == Qt::LeftButton) {
    result.type = isPress ? InputEventType::leftMouseDown : InputEventType::leftMouseUp;
  } else if (mouse.button() == Qt::RightButton && isPress) {
    result.type = InputEventType::rightMouseDown;
  } else {
    return std::nullopt;
  }
  result.location = ScreenSpace::current().toGlobal(mouse.globalPosition());
  return result;
}

}  // namespace

QtInputEvents::QtInputEvents(bool isFocusLossPress) {
  if (!isFocusLossPress) {
    return;
  }
  connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, [this](const QWindow* window) {
    if (window != nullptr) {
      return;
    }
    for (const auto& entry : global_.wanting(InputEventType::leftMouseDown)) {
      entry->handler({InputEventType::leftMouseDown, 0, pointerLocation()});
    }
  });
}

QtInputEvents::~QtInputEvents() = default;

std::unique_ptr<EventMonitor> QtInputEvents::monitorGlobal(
    unsigned mask, std::function<void(const InputEvent&)> handler) {
  return global_.add(mask, std::move(handler));
}

std::unique_ptr<EventMonitor> QtInputEvents::monitorLocal(
    unsigned mask, std::function<bool(const InputEvent&)> handler) {
  auto monitor = local_.add(mask, std::move(handler));
  qGuiApp->installEventFilter(this);  // moves it to the front when it is there already
  return monitor;
}

Point QtInputEvents::pointerLocation() {
  return ScreenSpace::current().toGlobal(QPointF(QCursor::pos()));
}

unsigned QtInputEvents::pressedMouseButtons() {
  const Qt::MouseButtons buttons = QGuiApplication::mouseButtons();
  return (buttons & Qt::LeftButton ? leftMouseButton : 0U) |
         (buttons & Qt::RightButton ? 1U << 1 : 0U) | (buttons & Qt::MiddleButton ? 1U << 2 : 0U);
}

void QtInputEvents::postKey(int /*keyCode*/) {}

bool QtInputEvents::eventFilter(QObject* watched, QEvent* event) {
  // Windows get their events before their items do.
  if (!watched->isWindowType()) {
    return false;
  }
  const auto input = inputEvent(*event);
  if (!input) {
    return false;
  }
  if (local_.isEmpty()) {
    qGuiApp->removeEventFilter(this);
    return false;
  }
  bool isSwallowed = false;
  for (const auto& entry : local_.wanting(input->type)) {
    isSwallowed = isSwallowed || entry->handler(*input);
  }
  return isSwallowed;
}

}  // namespace plemora
