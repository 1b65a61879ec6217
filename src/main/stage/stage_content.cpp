#include "main/stage/stage_content.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <utility>

#include "main/stage/stage_keys.h"
#include "platform/clock.h"
#include "views/quick_view.h"

namespace plemora {

namespace {

constexpr int notch = 120;             // what the toolkit counts for a notch of a wheel
constexpr double pointsPerNotch = 20;  // of a touchpad

QPointF pointF(const Point& point) {
  return {point.x, point.y};
}

Qt::MouseButton buttonOf(StageButton button) {
  return button == StageButton::left ? Qt::LeftButton : Qt::RightButton;
}

/// The key that types that character where there is one: a script types without a keyboard.
int keyOf(const StageKeyEvent& event) {
  const bool isCharacter = event.text.size() == 1 && event.text[0] >= ' ' && event.text[0] <= '~';
  return isCharacter ? QChar::fromLatin1(event.text[0]).toUpper().unicode()
                     : qtKeyOf(event.keyCode);
}

}  // namespace

StageContent::StageContent(std::shared_ptr<HostedView> view, Clock& clock, double scale)
    : view_(std::move(view)),
      quickView_(dynamic_cast<QuickView&>(*view_)),
      clock_(clock),
      renderer_([this] {
        if (changed_) {
          changed_();
        }
      }),
      scale_(scale) {}

StageContent::~StageContent() = default;

void StageContent::layOut() {
  if (frame_) {
    fit(frame_().size());
  }
}

void StageContent::fit(const Size& size) {
  // The size first: pictures in the view are made for the scale that they are shown at.
  renderer_.setSize(
      {static_cast<int>(std::lround(size.width)), static_cast<int>(std::lround(size.height))},
      scale_);
  renderer_.setItem(quickView_.item());
  renderer_.layOut();
}

const QImage& StageContent::picture(const Size& size, double scale) {
  scale_ = scale;
  fit(size);
  return renderer_.render();
}

void StageContent::setFocused(bool isFocused) {
  if (std::exchange(isFocused_, isFocused) != isFocused) {
    renderer_.setFocused(isFocused);
  }
}

Rect StageContent::onScreen(const Rect& inView) const {
  const Rect frame = frame_ ? frame_() : Rect{};
  return {frame.x + inView.x, frame.maxY() - inView.maxY(), inView.width, inView.height};
}

std::vector<StageControl> StageContent::controls() const {
  const Size size = frame_ ? frame_().size() : Size{};
  const Rect all{0, 0, size.width, size.height};
  std::vector<StageControl> found;
  for (ContentRenderer::Control& control : renderer_.controls()) {
    const QRectF& place = control.place;
    const Rect seen = all.intersection({place.x(), place.y(), place.width(), place.height()});
    if (!seen.isEmpty()) {
      found.push_back({std::move(control.name), onScreen(seen), control.value});
    }
  }
  return found;
}

void StageContent::pointer(const StagePointerEvent& event) {
  layOut();
  using Phase = StagePointerEvent::Phase;
  if (event.phase == Phase::left) {
    renderer_.leave();
    return;
  }
  const Qt::MouseButton button = buttonOf(event.button);
  const bool isMove = event.phase == Phase::moved || event.phase == Phase::dragged;
  const bool isDown = event.phase == Phase::pressed || event.phase == Phase::dragged;
  QMouseEvent mouse(event.phase == Phase::pressed    ? QEvent::MouseButtonPress
                    : event.phase == Phase::released ? QEvent::MouseButtonRelease
                                                     : QEvent::MouseMove,
                    pointF(event.position), pointF(event.position), isMove ? Qt::NoButton : button,
                    isDown ? button : Qt::NoButton, Qt::NoModifier);
  mouse.setTimestamp(time());
  renderer_.send(mouse);
}

void StageContent::scroll(const StageScrollEvent& event) {
  layOut();
  const double notches = event.steps != 0 ? event.steps : event.dy / pointsPerNotch;
  QWheelEvent wheel(pointF(event.position), pointF(event.position),
                    QPointF(event.dx, event.dy).toPoint(),
                    {static_cast<int>(std::lround(event.dx / pointsPerNotch * notch)),
                     static_cast<int>(std::lround(notches * notch))},
                    Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
  wheel.setTimestamp(time());
  renderer_.send(wheel);
}

void StageContent::key(const StageKeyEvent& event) {
  layOut();
  QKeyEvent key(event.isDown ? QEvent::KeyPress : QEvent::KeyRelease, keyOf(event),
                Qt::KeyboardModifiers(qtModifiersOf(event.modifiers)),
                QString::fromStdString(event.text));
  key.setTimestamp(time());
  renderer_.send(key);
}

quint64 StageContent::time() const {
  // Counted from 1: the toolkit takes 0 for no time at all.
  return 1 + static_cast<quint64>(std::max(0.0, clock_.mediaTime()) * 1000);
}

}  // namespace plemora
