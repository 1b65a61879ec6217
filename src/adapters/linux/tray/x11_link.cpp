#include "adapters/linux/tray/x11_link.h"

#include <QGuiApplication>
#include <algorithm>
#include <cstring>
#include <utility>

namespace plemora {

namespace {

constexpr std::uint32_t mostValues = 4096;

std::vector<std::uint32_t> values(const xcb_get_property_reply_t* reply) {
  if (!reply || reply->format != 32) {
    return {};
  }
  const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(reply));
  return {first, first + xcb_get_property_value_length(reply) / 4};
}

}  // namespace

std::unique_ptr<X11Link> X11Link::open() {
  return QGuiApplication::platformName() == "xcb" ? open(std::string()) : nullptr;
}

std::unique_ptr<X11Link> X11Link::open(const std::string& display) {
  int number = 0;
  xcb_connection_t* connection = xcb_connect(display.empty() ? nullptr : display.c_str(), &number);
  if (xcb_connection_has_error(connection) != 0) {
    xcb_disconnect(connection);
    return nullptr;
  }
  return std::unique_ptr<X11Link>(new X11Link(connection, number));
}

X11Link::X11Link(xcb_connection_t* connection, int number)
    : connection_(connection), number_(number) {
  auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
  for (int i = 0; i < number && screens.rem > 1; ++i) {
    xcb_screen_next(&screens);
  }
  screen_ = screens.data;
  readable_ =
      std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection), QSocketNotifier::Read);
  QObject::connect(readable_.get(), &QSocketNotifier::activated, [this] { dispatch(); });
}

X11Link::~X11Link() {
  readable_.reset();
  xcb_disconnect(connection_);
}

void X11Link::flush() {
  xcb_flush(connection_);
  dispatchLater();
}

void X11Link::dispatchLater() {
  if (!std::exchange(isDispatchDue_, true)) {
    QMetaObject::invokeMethod(
        readable_.get(), [this] { dispatch(); }, Qt::QueuedConnection);
  }
}

template <typename Reply, typename Cookie>
XcbReply<Reply> X11Link::wait(Cookie cookie,
                              Reply* (*read)(xcb_connection_t*, Cookie, xcb_generic_error_t**)) {
  xcb_generic_error_t* error = nullptr;
  XcbReply<Reply> reply(read(connection_, cookie, &error));
  std::free(error);
  // Waiting may have read events that the socket will not report again.
  dispatchLater();
  return reply;
}

void X11Link::dispatch() {
  isDispatchDue_ = false;
  docks_.reset();
  while (XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(connection_)}) {
    if (handler_) {
      handler_(*event);
    }
  }
  if (xcb_connection_has_error(connection_) != 0) {
    readable_->setEnabled(false);
  }
}

xcb_atom_t X11Link::atom(const std::string& name) {
  if (const auto known = atoms_.find(name); known != atoms_.end()) {
    return known->second;
  }
  const auto reply =
      wait(xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.c_str()),
           xcb_intern_atom_reply);
  return atoms_[name] = reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

std::vector<std::uint32_t> X11Link::property(xcb_window_t window, const std::string& name) {
  const auto reply = wait(xcb_get_property(connection_, 0, window, atom(name),
                                           XCB_GET_PROPERTY_TYPE_ANY, 0, mostValues),
                          xcb_get_property_reply);
  return values(reply.get());
}

std::optional<QRect> X11Link::shownRect(xcb_window_t window) {
  const auto attributesCookie = xcb_get_window_attributes(connection_, window);
  const auto geometryCookie = xcb_get_geometry(connection_, window);
  const auto placeCookie = xcb_translate_coordinates(connection_, window, screen_->root, 0, 0);
  const auto attributes = wait(attributesCookie, xcb_get_window_attributes_reply);
  const auto geometry = wait(geometryCookie, xcb_get_geometry_reply);
  const auto place = wait(placeCookie, xcb_translate_coordinates_reply);
  if (!attributes || attributes->map_state != XCB_MAP_STATE_VIEWABLE || !geometry || !place) {
    return std::nullopt;
  }
  return QRect(place->dst_x, place->dst_y, geometry->width, geometry->height);
}

std::optional<QPoint> X11Link::pointer() {
  const auto reply = wait(xcb_query_pointer(connection_, screen_->root), xcb_query_pointer_reply);
  return reply && reply->same_screen ? std::optional(QPoint(reply->root_x, reply->root_y))
                                     : std::nullopt;
}

QImage X11Link::picture(xcb_window_t window, const QRect& part) {
  const auto reply =
      wait(xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, window,
                         static_cast<std::int16_t>(part.x()), static_cast<std::int16_t>(part.y()),
                         static_cast<std::uint16_t>(part.width()),
                         static_cast<std::uint16_t>(part.height()), ~0u),
           xcb_get_image_reply);
  const qsizetype size = qsizetype(part.width()) * part.height() * 4;
  if (!reply || reply->depth < 24 || xcb_get_image_data_length(reply.get()) < size) {
    return {};
  }
  QImage image(part.size(),
               reply->depth == 32 ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
  // Both are rows of 32-bit pixels without gaps.
  std::memcpy(image.bits(), xcb_get_image_data(reply.get()), static_cast<std::size_t>(size));
  return image;
}

// A click asks several times where the icon is, and the server is busy showing that it came.
std::vector<X11Link::Dock> X11Link::docks() {
  if (!docks_) {
    docks_ = findDocks();
    dispatchLater();
  }
  return *docks_;
}

std::vector<X11Link::Dock> X11Link::findDocks() {
  // Without a window manager there is no list of clients; the root's children are asked too.
  std::vector<xcb_window_t> windows = property(screen_->root, "_NET_CLIENT_LIST_STACKING");
  if (const auto tree = wait(xcb_query_tree(connection_, screen_->root), xcb_query_tree_reply)) {
    const xcb_window_t* first = xcb_query_tree_children(tree.get());
    windows.insert(windows.begin(), first, first + xcb_query_tree_children_length(tree.get()));
  }
  const xcb_atom_t type = atom("_NET_WM_WINDOW_TYPE");
  const xcb_atom_t dock = atom("_NET_WM_WINDOW_TYPE_DOCK");
  std::vector<xcb_get_property_cookie_t> cookies;
  for (const xcb_window_t window : windows) {
    cookies.push_back(xcb_get_property(connection_, 0, window, type, XCB_ATOM_ATOM, 0, mostValues));
  }
  std::vector<xcb_window_t> found;
  for (std::size_t i = 0; i < windows.size(); ++i) {
    const auto reply = wait(cookies[i], xcb_get_property_reply);
    const auto types = values(reply.get());
    if (std::find(types.begin(), types.end(), dock) != types.end()) {
      found.push_back(windows[i]);
    }
  }
  std::vector<Dock> docks;
  for (const xcb_window_t window : found) {
    if (const auto rect = shownRect(window)) {
      docks.push_back({window, *rect});
    }
  }
  return docks;
}

}  // namespace plemora
