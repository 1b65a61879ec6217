#include "adapters/linux/windows/x11_panels.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWindow>
#include <algorithm>

#include "adapters/linux/windows/window_host.h"
#include "adapters/linux/windows/x11_window_stack.h"

namespace plemora {

namespace {

/// Two programs that both insist on being the highest would go on for ever.
constexpr int mostRaises = 20;

xcb_connection_t* toolkitConnection() {
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  return x11 != nullptr ? x11->connection() : nullptr;
}

/// The toolkit sends some requests no earlier than the next time that the server speaks to it.
void flushToolkit() {
  if (auto* toolkit = toolkitConnection()) {
    xcb_flush(toolkit);
  }
}

std::vector<xcb_window_t> ownWindows() {
  std::vector<xcb_window_t> ids;
  for (const QWindow* window : QGuiApplication::topLevelWindows()) {
    if (window->handle() != nullptr) {
      ids.push_back(static_cast<xcb_window_t>(window->winId()));
    }
  }
  return ids;
}

bool coversScreen(const QRect& device) {
  const auto screens = QGuiApplication::screens();
  return std::any_of(screens.begin(), screens.end(), [&](const QScreen* screen) {
    const QRect area = screen->geometry();
    return device.contains(QRect(area.topLeft(), area.size() * screen->devicePixelRatio()));
  });
}

}  // namespace

class X11Panels::Host : public WindowHost {
 public:
  Host(X11Panels& panels, const PanelWindowOptions& options)
      : WindowHost(options, Qt::BypassWindowManagerHint), panels_(panels) {}
  ~Host() override { X11Panels::Host::hide(); }

  void setFrame(const Rect& frame) override {
    WindowHost::setFrame(frame);
    flushToolkit();
  }

  void show() override {
    WindowHost::show();
    flushToolkit();
    panels_.panelShown(id());
  }

  void hide() override {
    if (isShown()) {
      giveKeysBack();
      panels_.panelHidden(id());
      WindowHost::hide();
      flushToolkit();
    }
  }

  void takeKeys() override {
    if (const auto current = focus(); current != id()) {
      previous_ = current;
    }
    // On the toolkit's connection, after its request that shows the window: the server refuses the
    // keys to a window that is not shown yet.
    if (auto* toolkit = toolkitConnection()) {
      xcb_set_input_focus(toolkit, XCB_INPUT_FOCUS_POINTER_ROOT, id(), XCB_CURRENT_TIME);
      xcb_flush(toolkit);
    }
  }

  void setOpacity(double opacity) override {
    WindowHost::setOpacity(opacity);
    flushToolkit();
  }

  bool isComposited() override { return plemora::isComposited(panels_.connection_); }

 private:
  xcb_window_t id() { return static_cast<xcb_window_t>(window().winId()); }

  xcb_window_t focus() const {
    auto* xcb = panels_.connection_.get();
    const X11Owned<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(xcb, xcb_get_input_focus(xcb), nullptr));
    return reply ? reply->focus : xcb_window_t{XCB_INPUT_FOCUS_POINTER_ROOT};
  }

  /// Only if nobody else has taken them meanwhile.
  void giveKeysBack() {
    if (focus() != id()) {
      return;
    }
    auto* xcb = panels_.connection_.get();
    const auto cookie =
        xcb_set_input_focus_checked(xcb, XCB_INPUT_FOCUS_POINTER_ROOT, previous_, XCB_CURRENT_TIME);
    const X11Owned<xcb_generic_error_t> error(xcb_request_check(xcb, cookie));
    if (error) {  // that window has gone
      xcb_set_input_focus(xcb, XCB_INPUT_FOCUS_POINTER_ROOT, XCB_INPUT_FOCUS_POINTER_ROOT,
                          XCB_CURRENT_TIME);
      xcb_flush(xcb);
    }
  }

  X11Panels& panels_;
  xcb_window_t previous_ = XCB_INPUT_FOCUS_POINTER_ROOT;
};

std::unique_ptr<PanelHost> X11Panels::makeHost(const PanelWindowOptions& options) {
  return std::make_unique<Host>(*this, options);
}

void X11Panels::panelShown(xcb_window_t window) {
  if (std::find(shown_.begin(), shown_.end(), window) != shown_.end()) {
    return;
  }
  shown_.push_back(window);
  if (shown_.size() > 1) {
    return;
  }
  raises_ = 0;
  later_ = std::make_unique<QTimer>();
  later_->setSingleShot(true);
  QObject::connect(later_.get(), &QTimer::timeout, later_.get(), [this] { keepAbove(); });
  rootEvents_ = connection_.watchRoot(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
  events_ = connection_.observe([this](const auto& event) { handle(*event); });
}

void X11Panels::panelHidden(xcb_window_t window) {
  std::erase(shown_, window);
  if (shown_.empty()) {
    events_ = {};
    rootEvents_.reset();
    later_.reset();
  }
}

void X11Panels::handle(const xcb_generic_event_t& event) {
  xcb_window_t window = XCB_WINDOW_NONE;
  switch (event.response_type & 0x7f) {
    case XCB_MAP_NOTIFY:
      window = reinterpret_cast<const xcb_map_notify_event_t&>(event).window;
      break;
    case XCB_CONFIGURE_NOTIFY:
      window = reinterpret_cast<const xcb_configure_notify_event_t&>(event).window;
      break;
    case XCB_CIRCULATE_NOTIFY:
      window = reinterpret_cast<const xcb_circulate_notify_event_t&>(event).window;
      break;
    default:
      return;
  }
  // Our own panels move at every frame of an animation, and not in the stack.
  if (std::find(shown_.begin(), shown_.end(), window) == shown_.end() && !later_->isActive()) {
    later_->start(0);
  }
}

void X11Panels::keepAbove() {
  for (const xcb_window_t panel : shown_) {
    if (raises_ < mostRaises && isBuried(panel)) {
      ++raises_;
      const std::uint32_t above = XCB_STACK_MODE_ABOVE;
      xcb_configure_window(connection_.get(), panel, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    }
  }
  connection_.flush();
}

bool X11Panels::isBuried(xcb_window_t panel) {
  auto* xcb = connection_.get();
  const auto question = xcb_get_geometry(xcb, panel);
  const X11Owned<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(xcb, question, nullptr));
  if (!geometry) {
    return false;
  }
  const QRect area(geometry->x, geometry->y, geometry->width, geometry->height);
  const auto below = windowsBelow(connection_, {panel}, area);
  const auto all = windowsBelow(connection_, {}, area);
  const auto own = ownWindows();
  // Ours is the first of those that are not below it.
  const auto first = all.begin() + static_cast<std::ptrdiff_t>(std::min(below.size(), all.size()));
  return std::any_of(first, all.end(), [&](const X11Window& window) {
    return std::find(own.begin(), own.end(), window.id) == own.end() && !coversScreen(window.frame);
  });
}

}  // namespace plemora
