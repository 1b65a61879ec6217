#include "adapters/linux/windows/layer_shell_session.h"

#include <QGuiApplication>
#include <QScreen>
#include <utility>

#include "adapters/linux/windows/layer_surface.h"
#include "adapters/linux/windows/screen_space.h"

namespace plemora {

namespace {

constexpr std::uint32_t allEdges =
    ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_BOTTOM |
    ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT | ZWLR_LAYER_SURFACE_V1_ANCHOR_RIGHT;

QPoint originOf(const WaylandOutput& output) {
  for (const QScreen* screen : QGuiApplication::screens()) {
    if (screen->name().toStdString() == output.name) {
      return screen->geometry().topLeft();
    }
  }
  return {};
}

}  // namespace

/// Covers one output, but for the panels: which of two surfaces of a layer is on top is not said
/// anywhere, so they must not overlap.
class LayerShellSession::Catcher : public WaylandSurfaceInput {
 public:
  Catcher(LayerShellSession& session, const WaylandOutput& output)
      : session_(session),
        origin_(originOf(output)),
        surface_(session.connection(), &output, *this,
                 {[this](const QSize& size) { configured(size); }, [] {}}) {
    surface_.place(allEdges, {0, 0});
    surface_.commit();
  }

  void cutOut() {
    QRegion region(QRect(QPoint(), surface_.size()));
    for (const auto& [panel, area] : session_.panels_) {
      region -= area.translated(-origin_);
    }
    surface_.setInputRegion(region);
    surface_.commit();
  }

  void pointer(const WaylandPointer& event) override {
    session_.pointer_ = QPointF(origin_) + event.position;
    session_.pointerMoved(session_.pointer_);
    if (event.kind != WaylandPointer::Kind::press) {
      return;
    }
    if (event.button == Qt::LeftButton) {
      session_.reportLater(InputEventType::leftMouseDown);
    } else if (event.button == Qt::RightButton) {
      session_.reportLater(InputEventType::rightMouseDown);
    }
  }

  void key(const WaylandKey&) override {}
  void keysChanged(bool) override {}

 private:
  void configured(const QSize& size) {
    if (std::exchange(drawn_, size) == size) {
      return;  // every commit would have the next configuration follow
    }
    auto* viewporter = session_.connection().viewporter();
    const QSize picture = viewporter != nullptr ? QSize(1, 1) : size;
    if (!nothing_ || nothing_->size() != picture) {
      nothing_ = std::make_unique<ShmBuffers>(session_.connection().shm(), picture);
    }
    if (viewporter != nullptr) {
      if (!viewport_) {
        viewport_.reset(wp_viewporter_get_viewport(viewporter, surface_.handle()));
      }
      wp_viewport_set_destination(viewport_.get(), size.width(), size.height());
    }
    if (auto* buffer = nothing_->idle()) {
      surface_.attach(*buffer, 1);
    }
    cutOut();
  }

  LayerShellSession& session_;
  QPoint origin_;
  QSize drawn_;
  std::unique_ptr<ShmBuffers> nothing_;
  LayerSurface surface_;
  WaylandOwned<wp_viewport> viewport_;
};

LayerShellSession::LayerShellSession(std::unique_ptr<LayerShellConnection> connection,
                                     Handlers handlers)
    : connection_(std::move(connection)), handlers_(std::move(handlers)) {
  connection_->setLostHandler([this] { panelClosed(); });
}

LayerShellSession::~LayerShellSession() = default;

void LayerShellSession::setPanel(const void* panel, const QRect& area) {
  if (area.isEmpty()) {
    panels_.erase(panel);
  } else {
    panels_[panel] = area;
  }
  if (panels_.empty()) {
    catchers_.clear();
    return;
  }
  if (catchers_.empty()) {
    for (const auto& output : connection_->outputs()) {
      catchers_.push_back(std::make_unique<Catcher>(*this, *output));
    }
    return;
  }
  for (const auto& catcher : catchers_) {
    catcher->cutOut();
  }
}

void LayerShellSession::keysWent() {
  reportLater(InputEventType::leftMouseDown, true);
}

void LayerShellSession::panelClosed() {
  reportLater(InputEventType::leftMouseDown);
}

void LayerShellSession::reportLater(InputEventType type, bool onlyWithoutKeys) {
  const InputEvent event{type, 0, ScreenSpace::current().toGlobal(pointer_)};
  QMetaObject::invokeMethod(
      &context_,
      [this, event, onlyWithoutKeys] {
        if (!onlyWithoutKeys || connection_->seat() == nullptr || !connection_->seat()->hasKeys()) {
          const auto report = handlers_.pressedElsewhere;  // may end the session
          report(event);
        }
      },
      Qt::QueuedConnection);
}

}  // namespace plemora
