#include "adapters/linux/windows/window_host.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QSurfaceFormat>

#include "adapters/linux/windows/screen_space.h"

namespace plemora {

void setUpPanelWindow(QQuickWindow& window, const PanelWindowOptions& options) {
  QSurfaceFormat format = window.format();
  format.setAlphaBufferSize(8);
  window.setFormat(format);
  window.setColor(options.isOpaque ? Qt::black : Qt::transparent);
  window.setObjectName(QString::fromStdString(options.identifier));
  window.setTitle(QString::fromStdString(options.title));
}

WindowHost::WindowHost(const PanelWindowOptions& options, Qt::WindowFlags extra)
    : isSizeFixed_(!extra.testFlag(Qt::BypassWindowManagerHint)) {
  setUpPanelWindow(window_, options);
  Qt::WindowFlags flags = Qt::Window | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | extra;
  flags.setFlag(Qt::NoDropShadowWindowHint, !options.hasShadow);
  flags.setFlag(Qt::WindowTransparentForInput, options.ignoresMouseEvents);
  flags.setFlag(Qt::WindowDoesNotAcceptFocus, !options.canBecomeKey);
  window_.setFlags(flags);
}

void WindowHost::setFrame(const Rect& frame) {
  const QRect whole = ScreenSpace::current().toWholePoints(frame);
  if (isSizeFixed_) {
    window_.setMinimumSize(whole.size());
    window_.setMaximumSize(whole.size());
  }
  window_.setGeometry(whole);
}

void WindowHost::show() {
  window_.show();
  window_.raise();
}

void WindowHost::Window::closeEvent(QCloseEvent* event) {
  event->ignore();
  for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
    QCoreApplication::postEvent(this, new QKeyEvent(type, Qt::Key_Escape, Qt::NoModifier));
  }
}

}  // namespace plemora
