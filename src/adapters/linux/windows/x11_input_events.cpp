#include "adapters/linux/windows/x11_input_events.h"

#include <xcb/xinput.h>

#include <QGuiApplication>
#include <QWindow>
#include <algorithm>
#include <utility>

#include "adapters/linux/windows/screen_space.h"
#include "base/log.h"

namespace plemora {

namespace {

constexpr Logger logger("windows");

bool isOurs(xcb_window_t window) {
  const auto windows = QGuiApplication::allWindows();
  return std::any_of(windows.begin(), windows.end(), [&](const QWindow* candidate) {
    return candidate->handle() != nullptr && candidate->winId() == window;
  });
}

}  // namespace

X11InputEvents::X11InputEvents(X11Connection& connection)
    : QtInputEvents(connection.isXwayland()), connection_(connection) {
  const auto cookie = xcb_input_xi_query_version(connection_.get(), 2, 2);
  const X11Owned<xcb_input_xi_query_version_reply_t> version(
      xcb_input_xi_query_version_reply(connection_.get(), cookie, nullptr));
  isAvailable_ = version && (version->major_version > 2 ||
                             (version->major_version == 2 && version->minor_version >= 2));
  if (!isAvailable_) {
    logger.warning(
        "This X server lacks XInput 2.2: a click in another window will not close the panel, "
        "Escape will.");
  }
}

std::unique_ptr<EventMonitor> X11InputEvents::monitorGlobal(
    unsigned mask, std::function<void(const InputEvent&)> handler) {
  const bool wasIdle = global_.isEmpty();
  auto monitor = QtInputEvents::monitorGlobal(mask, std::move(handler));
  if (wasIdle && isAvailable_) {
    events_ = connection_.observe([this](const auto& event) { handle(*event); });
    select(XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_RELEASE);
  }
  // The end of the last monitor ends the events at once, not at the next one.
  struct Hold : EventMonitor {
    std::unique_ptr<EventMonitor> entry;
    std::function<void()> ended;
    ~Hold() override {
      entry.reset();
      ended();
    }
  };
  auto hold = std::make_unique<Hold>();
  hold->entry = std::move(monitor);
  hold->ended = [this, alive = std::weak_ptr<int>(alive_)] {
    if (!alive.expired() && global_.isEmpty()) {
      events_ = {};
      select(0);
    }
  };
  return hold;
}

void X11InputEvents::select(unsigned mask) {
  struct {
    xcb_input_event_mask_t head;
    std::uint32_t mask;
  } const selection{{XCB_INPUT_DEVICE_ALL_MASTER, 1}, mask};
  xcb_input_xi_select_events(connection_.get(), connection_.root(), 1, &selection.head);
  connection_.flush();
}

void X11InputEvents::handle(const xcb_generic_event_t& event) {
  if ((event.response_type & 0x7f) != XCB_GE_GENERIC) {
    return;
  }
  const auto& raw = reinterpret_cast<const xcb_input_raw_button_press_event_t&>(event);
  const auto* extension = xcb_get_extension_data(connection_.get(), &xcb_input_id);
  if (raw.extension != extension->major_opcode) {
    return;
  }
  if (raw.event_type == XCB_INPUT_RAW_BUTTON_PRESS && raw.detail == XCB_BUTTON_INDEX_1) {
    report(InputEventType::leftMouseDown);
  } else if (raw.event_type == XCB_INPUT_RAW_BUTTON_PRESS && raw.detail == XCB_BUTTON_INDEX_3) {
    report(InputEventType::rightMouseDown);
  } else if (raw.event_type == XCB_INPUT_RAW_BUTTON_RELEASE && raw.detail == XCB_BUTTON_INDEX_1) {
    report(InputEventType::leftMouseUp);
  }
}

void X11InputEvents::report(InputEventType type) {
  const auto wanting = global_.wanting(type);
  if (wanting.empty()) {
    return;
  }
  const Pointer where = pointer();
  // What a right press there shows is another program's, such as a menu of the tray's.
  const bool asksAreas = ownAreas_ && type != InputEventType::rightMouseDown;
  const auto own = asksAreas ? ownAreas_() : std::vector<Rect>();
  if (where.isOverOurs || std::any_of(own.begin(), own.end(), [&](const Rect& area) {
        return area.contains(where.location);
      })) {
    return;
  }
  for (const auto& entry : wanting) {
    entry->handler({type, 0, where.location});
  }
}

X11InputEvents::Pointer X11InputEvents::pointer() {
  constexpr int deepest = 32;
  Pointer result;
  xcb_window_t window = connection_.root();
  for (int depth = 0; depth < deepest && window != XCB_WINDOW_NONE; ++depth) {
    const auto cookie = xcb_query_pointer(connection_.get(), window);
    const X11Owned<xcb_query_pointer_reply_t> reply(
        xcb_query_pointer_reply(connection_.get(), cookie, nullptr));
    if (!reply) {
      break;  // the window has gone meanwhile
    }
    if (depth == 0) {
      result.location = ScreenSpace::current().fromDevice({reply->root_x, reply->root_y});
    }
    result.isOverOurs = result.isOverOurs || isOurs(reply->child);
    window = reply->child;
  }
  return result;
}

Point X11InputEvents::pointerLocation() {
  const auto cookie = xcb_query_pointer(connection_.get(), connection_.root());
  const X11Owned<xcb_query_pointer_reply_t> reply(
      xcb_query_pointer_reply(connection_.get(), cookie, nullptr));
  return reply ? ScreenSpace::current().fromDevice({reply->root_x, reply->root_y})
               : QtInputEvents::pointerLocation();
}

}  // namespace plemora
