#include "adapters/linux/windows/layer_shell_host.h"

#include <QCoreApplication>
#include <QFocusEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QQuickItem>
#include <QQuickRenderTarget>
#include <QScreen>
#include <QWheelEvent>
#include <utility>

#include "adapters/linux/windows/screen_space.h"
#include "adapters/linux/windows/window_host.h"
#include "base/log.h"

namespace plemora {

namespace {

constexpr Logger logger("windows");

constexpr std::uint32_t topRight =
    ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_RIGHT;

/// Of a surface of any size.
constexpr QRect everywhere(0, 0, 1 << 15, 1 << 15);

}  // namespace

LayerShellHost::LayerShellHost(const PanelWindowOptions& options, SessionSource session)
    : makeSession_(std::move(session)),
      takesPointer_(!options.ignoresMouseEvents),
      // Not initialised: that would ask for a graphics device, which drawing in software has not.
      control_(std::make_unique<QQuickRenderControl>()),
      window_(std::make_unique<QQuickWindow>(control_.get())) {
  setUpPanelWindow(*window_, options);
  const auto changed = [this] {
    isSceneStale_ = true;
    wantFrame();
  };
  QObject::connect(control_.get(), &QQuickRenderControl::renderRequested, window_.get(), changed);
  QObject::connect(control_.get(), &QQuickRenderControl::sceneChanged, window_.get(), changed);
}

LayerShellHost::~LayerShellHost() {
  LayerShellHost::hide();
  control_->disconnect(window_.get());
  control_.reset();  // gives back what the scene holds, so the window must still be there
}

void LayerShellHost::setFrame(const Rect& frame) {
  frame_ = ScreenSpace::current().toWholePoints(frame);
  window_->setGeometry(frame_);
  window_->contentItem()->setSize(frame_.size());
  if (surface_) {
    place();
    surface_->commit();
  }
}

void LayerShellHost::place() {
  const QMargins margins(0, frame_.top() - screen_.top(), screen_.right() - frame_.right(), 0);
  surface_->place(topRight, frame_.size(), margins);
  if (takesPointer_) {
    session_->setPanel(this, frame_);
  }
}

void LayerShellHost::show() {
  if (surface_) {
    return;
  }
  session_ = makeSession_();
  if (!session_) {
    logger.error(
        "The panel cannot be shown: the compositor takes no connection. Check that the variable "
        "WAYLAND_DISPLAY names the one that the desktop runs on.");
    return;
  }
  const QScreen* screen = QGuiApplication::screenAt(frame_.center());
  screen = screen != nullptr ? screen : QGuiApplication::primaryScreen();
  const WaylandOutput* output = nullptr;
  if (screen != nullptr) {
    screen_ = screen->geometry();
    output = session_->connection().output(screen->name().toStdString());
  }
  scale_ = output != nullptr ? output->scale : 1;
  isFrameUnderway_ = false;
  surface_ = std::make_unique<LayerSurface>(
      session_->connection(), output, static_cast<WaylandSurfaceInput&>(*this),
      LayerSurface::Handlers{[this](const QSize&) { wantFrame(); },
                             [this] { session_->panelClosed(); }});
  place();
  if (!takesPointer_) {
    surface_->setInputRegion({});
  }
  surface_->commit();
}

void LayerShellHost::hide() {
  if (!surface_) {
    return;
  }
  surface_.reset();
  buffers_.reset();
  retired_.reset();
  session_->setPanel(this, {});
  session_.reset();
  QEvent leave(QEvent::Leave);
  QCoreApplication::sendEvent(window_.get(), &leave);
}

void LayerShellHost::takeKeys() {
  if (surface_) {
    surface_->takeKeys();
    surface_->commit();
  }
}

void LayerShellHost::setIgnoresMouseEvents(bool ignores) {
  if (std::exchange(takesPointer_, !ignores) == !ignores || !surface_) {
    return;
  }
  surface_->setInputRegion(ignores ? QRect() : everywhere);
  session_->setPanel(this, ignores ? QRect() : frame_);
  surface_->commit();
}

void LayerShellHost::setOpacity(double opacity) {
  if (std::exchange(opacity_, opacity) != opacity) {
    wantFrame();
  }
}

void LayerShellHost::wantFrame() {
  isFrameWanted_ = true;
  if (!surface_ || isFrameUnderway_ || surface_->size().isEmpty() ||
      std::exchange(isDrawQueued_, true)) {
    return;
  }
  later([this](QQuickWindow&) {
    isDrawQueued_ = false;
    draw();
  });
}

bool LayerShellHost::fitPicture(const QSize& pixels) {
  if (buffers_ && buffers_->size() == pixels) {
    return true;
  }
  retired_ = std::move(buffers_);
  buffers_ = std::make_unique<ShmBuffers>(session_->connection().shm(), pixels, [this] {
    if (isFrameWanted_) {
      wantFrame();
    }
  });
  if (scene_.size() != pixels || scene_.devicePixelRatio() != scale_) {
    scene_ = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
    scene_.setDevicePixelRatio(scale_);
    scene_.fill(Qt::transparent);
    auto target = QQuickRenderTarget::fromPaintDevice(&scene_);
    target.setDevicePixelRatio(scale_);
    window_->setRenderTarget(target);
    isSceneStale_ = true;
  }
  return buffers_->isValid();
}

void LayerShellHost::draw() {
  // It may have been hidden, and shown again, since the draw was queued.
  if (!surface_ || isFrameUnderway_ || surface_->size().isEmpty() ||
      !fitPicture(surface_->size() * scale_)) {
    return;
  }
  auto* buffer = buffers_->idle();
  if (buffer == nullptr) {
    return;  // drawn when one is released
  }
  if (isSceneStale_) {
    control_->polishItems();
    control_->sync();
    isSceneStale_ = false;
    control_->render();
  }
  isFrameWanted_ = false;
  QPainter painter(&buffer->image);
  painter.setCompositionMode(QPainter::CompositionMode_Source);
  if (opacity_ < 1) {
    buffer->image.fill(Qt::transparent);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.setOpacity(opacity_);
  }
  painter.drawImage(buffer->image.rect(), scene_);
  painter.end();
  isFrameUnderway_ = true;
  surface_->attach(*buffer, scale_, [this] {
    isFrameUnderway_ = false;
    retired_.reset();
    if (isFrameWanted_) {
      wantFrame();
    }
  });
  surface_->commit();
}

void LayerShellHost::later(std::function<void(QQuickWindow&)> action) {
  QMetaObject::invokeMethod(
      window_.get(), [window = window_.get(), action = std::move(action)] { action(*window); },
      Qt::QueuedConnection);
}

void LayerShellHost::pointer(const WaylandPointer& event) {
  session_->pointerMoved(QPointF(frame_.topLeft()) + event.position);
  later([this, event](QQuickWindow&) { deliver(event); });
}

void LayerShellHost::deliver(const WaylandPointer& event) {
  const QPointF global = QPointF(frame_.topLeft()) + event.position;
  if (event.kind == WaylandPointer::Kind::leave) {
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(window_.get(), &leave);
    return;
  }
  if (event.kind == WaylandPointer::Kind::wheel) {
    QWheelEvent wheel(event.position, global, event.pixels, event.degrees, event.buttons,
                      event.modifiers, Qt::NoScrollPhase, false);
    wheel.setTimestamp(event.time);
    QCoreApplication::sendEvent(window_.get(), &wheel);
    return;
  }
  const auto type = event.kind == WaylandPointer::Kind::press     ? QEvent::MouseButtonPress
                    : event.kind == WaylandPointer::Kind::release ? QEvent::MouseButtonRelease
                                                                  : QEvent::MouseMove;
  QMouseEvent mouse(type, event.position, global, event.button, event.buttons, event.modifiers);
  mouse.setTimestamp(event.time);
  QCoreApplication::sendEvent(window_.get(), &mouse);
}

void LayerShellHost::key(const WaylandKey& key) {
  later([key](QQuickWindow& window) {
    QKeyEvent event(key.isPress ? QEvent::KeyPress : QEvent::KeyRelease, key.key, key.modifiers,
                    key.text, key.isRepeat);
    event.setTimestamp(key.time);
    QCoreApplication::sendEvent(&window, &event);
  });
}

void LayerShellHost::keysChanged(bool areHere) {
  if (!areHere) {
    session_->keysWent();
  }
  later([areHere](QQuickWindow& window) {
    QFocusEvent event(areHere ? QEvent::FocusIn : QEvent::FocusOut, Qt::ActiveWindowFocusReason);
    QCoreApplication::sendEvent(&window, &event);
  });
}

}  // namespace plemora
