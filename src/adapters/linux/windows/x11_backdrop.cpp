#include "adapters/linux/windows/x11_backdrop.h"

#include <xcb/composite.h>

#include <algorithm>
#include <utility>

#include "adapters/linux/windows/screen_space.h"
#include "adapters/linux/windows/x11_backdrop_watch.h"
#include "base/log.h"

namespace plemora {

namespace {

constexpr Logger logger("windows");

/// Has the server keep the contents of all windows apart from the screen while it lives.
class Redirection {
 public:
  explicit Redirection(X11Connection& connection) : connection_(connection) {
    xcb_composite_redirect_subwindows(connection_.get(), connection_.root(),
                                      XCB_COMPOSITE_REDIRECT_AUTOMATIC);
  }
  ~Redirection() {
    xcb_composite_unredirect_subwindows(connection_.get(), connection_.root(),
                                        XCB_COMPOSITE_REDIRECT_AUTOMATIC);
    connection_.flush();
  }
  Redirection(const Redirection&) = delete;
  Redirection& operator=(const Redirection&) = delete;

 private:
  X11Connection& connection_;
};

/// What the painter remembers of the screen lasts as long as this.
struct ScreenMemory {
  explicit ScreenMemory(X11Painter& painterToUse) : painter(painterToUse) {
    painter.rememberScreen();
  }
  ~ScreenMemory() { painter.forgetScreen(); }
  ScreenMemory(const ScreenMemory&) = delete;
  ScreenMemory& operator=(const ScreenMemory&) = delete;

  X11Painter& painter;
};

}  // namespace

/// Lives while somebody observes.
class X11Backdrop::Session {
 public:
  Session(X11Backdrop& owner, std::function<bool(xcb_window_t)> isPanel)
      : memory_(owner.painter_),
        redirection_(owner.connection_),
        watch(owner.connection_, std::move(isPanel),
              [&owner] { owner.changes_.set(owner.changes_.get() + 1); }) {}

 private:
  ScreenMemory memory_;
  Redirection redirection_;

 public:
  X11BackdropWatch watch;
};

X11Backdrop::X11Backdrop(X11Connection& connection,
                         std::function<std::vector<xcb_window_t>()> panels)
    : connection_(connection), panels_(std::move(panels)), painter_(connection) {
  if (painter_.isAvailable() && !connection.isXwayland()) {
    kind_ = Kind::pixels;
  } else {
    logger.info("What is behind the panel cannot be captured here: it shows a plain tint.");
  }
}

X11Backdrop::~X11Backdrop() = default;

BackdropImage X11Backdrop::capture(const Rect& rect) {
  if (kind_ != Kind::pixels || rect.isEmpty()) {
    return {};
  }
  const ScreenSpace space = ScreenSpace::current();
  const QRect area = space.toDevice(rect);
  BackdropImage image;
  if (const auto session = session_.lock()) {
    if (session->watch.windows(area) == nullptr) {
      session->watch.setWindows(windowsBelow(connection_, panels_(), area), area);
    }
    image = painter_.paint(*session->watch.windows(area), area);
  } else {
    const ScreenMemory memory(painter_);
    const Redirection redirection(connection_);
    image = painter_.paint(windowsBelow(connection_, panels_(), area), area);
  }
  image.scale = space.scaleAt(rect);
  return image;
}

Subscription X11Backdrop::observe(std::function<void()> changed) {
  auto session = session_.lock();
  if (!session && kind_ == Kind::pixels) {
    session = std::make_shared<Session>(*this, [this](xcb_window_t window) {
      const auto panels = panels_();
      return std::find(panels.begin(), panels.end(), window) != panels.end();
    });
    session_ = session;
  }
  return changes_.subscribe([session, changed = std::move(changed)](int) { changed(); });
}

}  // namespace plemora
