#include "main/stage/stage_screen_window.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "main/stage/stage_keys.h"

namespace plemora {

namespace {

constexpr double shareOfScreen = 0.9;  // that the window takes at most
constexpr double notch = 120;          // what the toolkit counts for a notch of a wheel
constexpr double pointsPerNotch = 20;

std::optional<StageButton> buttonOf(Qt::MouseButton button) {
  switch (button) {
    case Qt::LeftButton:
      return StageButton::left;
    case Qt::RightButton:
      return StageButton::right;
    case Qt::MiddleButton:
      return StageButton::middle;
    default:
      return std::nullopt;
  }
}

}  // namespace

StageScreenWindow::StageScreenWindow(StageDesktop& desktop, StageShow& show,
                                     std::function<void()> catchUp)
    : desktop_(desktop), show_(show), catchUp_(std::move(catchUp)) {
  setTitle("Plemora on stage");
  const Rect stage = desktop.space.main();
  QSizeF size(stage.width, stage.height);
  if (const QScreen* real = QRasterWindow::screen()) {
    const QSizeF room = QSizeF(real->availableSize()) * shareOfScreen;
    if (room.width() < size.width() || room.height() < size.height()) {
      size.scale(room, Qt::KeepAspectRatio);
    }
  }
  resize(size.toSize());
  setMinimumSize({480, 300});
}

const Screen* StageScreenWindow::screen() const {
  const auto& screens = desktop_.screens.screens().get();
  return screens.empty() ? nullptr : &screens.front();
}

QRectF StageScreenWindow::place() const {
  const Screen* shown = screen();
  if (shown == nullptr) {
    return {};
  }
  const QSizeF stage(shown->frame.width, shown->frame.height);
  const QSizeF size = stage.scaled(QSizeF(this->size()), Qt::KeepAspectRatio);
  return {QPointF((width() - size.width()) / 2, (height() - size.height()) / 2), size};
}

Point StageScreenWindow::onStage(const QPointF& position) const {
  const Screen* shown = screen();
  const QRectF all = place();
  if (shown == nullptr || all.isEmpty()) {
    return {};
  }
  const double part = shown->frame.width / all.width();
  const double x = std::clamp((position.x() - all.x()) * part, 0.0, shown->frame.width - 1);
  const double y = std::clamp((position.y() - all.y()) * part, 0.0, shown->frame.height - 1);
  return {shown->frame.x + x, shown->frame.maxY() - y};
}

void StageScreenWindow::refresh() {
  const Screen* shown = screen();
  if (shown == nullptr || !isExposed()) {
    return;
  }
  show_.compositor().picture(shown->id);
  const QRegion damage = show_.compositor().takeDamage(shown->id);
  const QRectF all = place();
  const double part = all.width() / (shown->frame.width * shown->scale);
  for (const QRect& rect : damage) {
    // A pixel more: scaling blends neighbours.
    const QRectF inWindow(all.x() + rect.x() * part, all.y() + rect.y() * part, rect.width() * part,
                          rect.height() * part);
    update(inWindow.toAlignedRect().adjusted(-1, -1, 1, 1));
  }
}

void StageScreenWindow::paintEvent(QPaintEvent* event) {
  QPainter painter(this);
  painter.setClipRegion(event->region());
  const QRectF all = place();
  if (all.size() != QSizeF(size())) {
    painter.fillRect(QRect({0, 0}, size()), Qt::black);
  }
  if (const Screen* shown = screen()) {
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(all, show_.compositor().picture(shown->id));
  }
}

void StageScreenWindow::mouseMoveEvent(QMouseEvent* event) {
  catchUp_();
  desktop_.movePointer(onStage(event->position()));
}

void StageScreenWindow::mousePressEvent(QMouseEvent* event) {
  if (const auto button = buttonOf(event->button())) {
    catchUp_();
    desktop_.press(onStage(event->position()), *button);
  }
}

void StageScreenWindow::mouseReleaseEvent(QMouseEvent* event) {
  if (const auto button = buttonOf(event->button())) {
    catchUp_();
    desktop_.movePointer(onStage(event->position()));
    desktop_.release(*button);
  }
}

void StageScreenWindow::wheelEvent(QWheelEvent* event) {
  catchUp_();
  turned_ += event->angleDelta().y() / notch;
  const int steps = static_cast<int>(turned_);
  turned_ -= steps;
  const QPointF moved = event->hasPixelDelta()
                            ? QPointF(event->pixelDelta())
                            : QPointF(event->angleDelta()) / notch * pointsPerNotch;
  desktop_.scroll(onStage(event->position()), moved.x(), moved.y(), steps);
}

void StageScreenWindow::keyPressEvent(QKeyEvent* event) {
  const int code = stageKeyCode(event->key());
  if (code >= 0) {
    catchUp_();
    desktop_.key(code, event->text().toStdString(), stageModifiers(event->modifiers().toInt()));
  }
}

}  // namespace plemora
