#include "adapters/linux/windows/x11_backdrop_watch.h"

#include <xcb/xfixes.h>

#include <algorithm>
#include <utility>

namespace plemora {

namespace {

using std::chrono::milliseconds;
constexpr milliseconds shortestInterval{34};  // 30 a second

/// The child of the root window that an event about its place is for.
std::optional<xcb_window_t> movedWindow(const xcb_generic_event_t& event) {
  switch (event.response_type & 0x7f) {
    case XCB_MAP_NOTIFY:
      return reinterpret_cast<const xcb_map_notify_event_t&>(event).window;
    case XCB_UNMAP_NOTIFY:
      return reinterpret_cast<const xcb_unmap_notify_event_t&>(event).window;
    case XCB_CONFIGURE_NOTIFY:
      return reinterpret_cast<const xcb_configure_notify_event_t&>(event).window;
    case XCB_REPARENT_NOTIFY:
      return reinterpret_cast<const xcb_reparent_notify_event_t&>(event).window;
    case XCB_CIRCULATE_NOTIFY:
      return reinterpret_cast<const xcb_circulate_notify_event_t&>(event).window;
    case XCB_DESTROY_NOTIFY:
      return reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window;
    default:
      return std::nullopt;
  }
}

}  // namespace

X11BackdropWatch::X11BackdropWatch(X11Connection& connection,
                                   std::function<bool(xcb_window_t)> isPanel,
                                   std::function<void()> changed)
    : connection_(connection), isPanel_(std::move(isPanel)), changed_(std::move(changed)) {
  damageEvent_ = connection_.firstEvent(xcb_damage_id);
  if (damageEvent_ && connection_.firstEvent(xcb_xfixes_id)) {
    // The server refuses everything else before it has been asked for these.
    auto* xcb = connection_.get();
    const auto fixes = xcb_xfixes_query_version(xcb, 4, 0);
    const auto damage = xcb_damage_query_version(xcb, 1, 1);
    X11Owned<xcb_xfixes_query_version_reply_t>(xcb_xfixes_query_version_reply(xcb, fixes, nullptr));
    X11Owned<xcb_damage_query_version_reply_t>(
        xcb_damage_query_version_reply(xcb, damage, nullptr));
  } else {
    damageEvent_.reset();
  }
  timer_.setSingleShot(true);
  timer_.setTimerType(Qt::PreciseTimer);
  QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { fire(); });
  rootEvents_ =
      connection_.watchRoot(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE);
  events_ = connection_.observe([this](const auto& event) { handle(*event); });
}

X11BackdropWatch::~X11BackdropWatch() {
  for (const auto& [window, damage] : damages_) {
    xcb_damage_destroy(connection_.get(), damage);
  }
  connection_.flush();
}

const std::vector<X11Window>* X11BackdropWatch::windows(const QRect& area) const {
  return areWindowsKnown_ && area == area_ ? &windows_ : nullptr;
}

void X11BackdropWatch::setWindows(std::vector<X11Window> windows, const QRect& area) {
  windows_ = std::move(windows);
  area_ = area;
  areWindowsKnown_ = true;
  if (!damageEvent_) {
    return;
  }
  auto* xcb = connection_.get();
  std::map<xcb_window_t, xcb_damage_damage_t> wanted;
  for (const X11Window& window : windows_) {
    const auto known = damages_.extract(window.id);
    if (!known.empty()) {
      wanted[window.id] = known.mapped();
      continue;
    }
    const xcb_damage_damage_t damage = xcb_generate_id(xcb);
    // All of it counts as damaged at first, but has been seen.
    xcb_damage_create(xcb, damage, window.id, XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
    xcb_damage_subtract(xcb, damage, XCB_XFIXES_REGION_NONE, XCB_XFIXES_REGION_NONE);
    wanted[window.id] = damage;
  }
  for (const auto& [window, damage] : damages_) {
    xcb_damage_destroy(xcb, damage);
    damaged_.erase(window);
  }
  damages_ = std::move(wanted);
  connection_.flush();
}

void X11BackdropWatch::handle(const xcb_generic_event_t& event) {
  if (damageEvent_ && (event.response_type & 0x7f) == *damageEvent_ + XCB_DAMAGE_NOTIFY) {
    damaged_.insert(reinterpret_cast<const xcb_damage_notify_event_t&>(event).drawable);
    schedule();
    return;
  }
  if ((event.response_type & 0x7f) == XCB_PROPERTY_NOTIFY) {
    const auto& property = reinterpret_cast<const xcb_property_notify_event_t&>(event);
    hasMoved_ = hasMoved_ || property.atom == connection_.atom("_XROOTPMAP_ID");
  } else if (const auto window = movedWindow(event); window && !isPanel_(*window)) {
    hasMoved_ = true;
  }
  if (hasMoved_) {
    areWindowsKnown_ = false;
    schedule();
  }
}

void X11BackdropWatch::schedule() {
  if (!timer_.isActive()) {
    const auto since =
        std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - last_);
    timer_.start(std::max(milliseconds(0), shortestInterval - since));
  }
}

bool X11BackdropWatch::takeDamage(const X11Window& window, xcb_damage_damage_t damage) {
  auto* xcb = connection_.get();
  const xcb_xfixes_region_t parts = xcb_generate_id(xcb);
  xcb_xfixes_create_region(xcb, parts, 0, nullptr);
  xcb_damage_subtract(xcb, damage, XCB_XFIXES_REGION_NONE, parts);
  const auto cookie = xcb_xfixes_fetch_region(xcb, parts);
  xcb_xfixes_destroy_region(xcb, parts);
  const X11Owned<xcb_xfixes_fetch_region_reply_t> region(
      xcb_xfixes_fetch_region_reply(xcb, cookie, nullptr));
  if (!region) {
    return false;  // the window has gone, which is news of its own
  }
  const auto* first = xcb_xfixes_fetch_region_rectangles(region.get());
  const QPoint origin = window.frame.topLeft() + QPoint(window.border, window.border);
  return std::any_of(first, first + xcb_xfixes_fetch_region_rectangles_length(region.get()),
                     [&](const xcb_rectangle_t& rectangle) {
                       return QRect(rectangle.x, rectangle.y, rectangle.width, rectangle.height)
                           .translated(origin)
                           .intersects(area_);
                     });
}

void X11BackdropWatch::fire() {
  bool hasChanged = std::exchange(hasMoved_, false);
  const auto damaged = std::exchange(damaged_, {});
  for (const X11Window& window : windows_) {
    const auto damage = damages_.find(window.id);
    if (damaged.contains(window.id) && damage != damages_.end()) {
      hasChanged = takeDamage(window, damage->second) || hasChanged;
    }
  }
  last_ = std::chrono::steady_clock::now();
  if (hasChanged) {
    changed_();
  }
}

}  // namespace plemora
