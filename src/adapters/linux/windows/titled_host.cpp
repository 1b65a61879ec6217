#include "adapters/linux/windows/titled_host.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QPalette>
#include <utility>

#include "adapters/linux/windows/screen_space.h"

namespace plemora {

TitledHost::TitledHost(const TitledWindowOptions& options, std::function<void(const Rect&)> moved)
    : moved_(std::move(moved)) {
  window_.willClose = options.windowWillClose;
  window_.isMovedByBackground = options.isMovableByWindowBackground;
  window_.setObjectName(QString::fromStdString(options.identifier));
  window_.setTitle(QString::fromStdString(options.title));
  window_.setColor(QGuiApplication::palette().color(QPalette::Window));
  window_.setFlags(Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                   Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint);
  QObject::connect(&window_, &QWindow::xChanged, &window_, [this] { report(); });
  QObject::connect(&window_, &QWindow::yChanged, &window_, [this] { report(); });
}

void TitledHost::setFrame(const Rect& frame) {
  const QRect whole = ScreenSpace::current().toWholePoints(frame);
  // Its size before its bounds, which would have it changed and reported one edge at a time.
  window_.setGeometry(whole);
  window_.setMinimumSize(whole.size());
  window_.setMaximumSize(whole.size());
}

void TitledHost::show() {
  window_.showNormal();
  window_.raise();
}

void TitledHost::report() {
  if (window_.isVisible()) {
    moved_(ScreenSpace::current().toGlobal(QRectF(window_.geometry())));
  }
}

void TitledHost::Window::closeEvent(QCloseEvent* event) {
  event->ignore();  // the toolkit would take the window apart
  hide();
  if (willClose) {
    // Later: the owner may let the window go.
    QMetaObject::invokeMethod(this, willClose, Qt::QueuedConnection);
  }
}

void TitledHost::Window::mousePressEvent(QMouseEvent* event) {
  QQuickWindow::mousePressEvent(event);
  if (!event->isAccepted() && isMovedByBackground && event->button() == Qt::LeftButton) {
    startSystemMove();
  }
}

}  // namespace plemora
