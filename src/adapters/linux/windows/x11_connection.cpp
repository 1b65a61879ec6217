#include "adapters/linux/windows/x11_connection.h"

#include <QAbstractEventDispatcher>
#include <QGuiApplication>
#include <QScreen>
#include <algorithm>
#include <utility>

#include "base/log.h"

namespace plemora {

namespace {

constexpr Logger logger("windows");

}  // namespace

std::unique_ptr<X11Connection> X11Connection::open() {
  int number = 0;
  xcb_connection_t* connection = xcb_connect(nullptr, &number);
  if (xcb_connection_has_error(connection) != 0) {
    xcb_disconnect(connection);
    return nullptr;
  }
  return std::unique_ptr<X11Connection>(new X11Connection(connection, number));
}

X11Connection::X11Connection(xcb_connection_t* connection, int screenNumber)
    : connection_(connection), screenNumber_(screenNumber) {
  auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
  for (int i = 0; i < screenNumber; ++i) {
    xcb_screen_next(&screens);
  }
  screen_ = screens.data;
  notifier_ =
      std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection), QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                   [this] { dispatch(); });
  // Events that were read along with a reply make the socket readable no more.
  if (auto* dispatcher = QAbstractEventDispatcher::instance()) {
    beforeBlocking_ = QObject::connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock,
                                       notifier_.get(), [this] { dispatch(); });
  }
}

X11Connection::~X11Connection() {
  QObject::disconnect(beforeBlocking_);
  notifier_.reset();
  xcb_disconnect(connection_);
}

bool X11Connection::isXwayland() const {
  const auto screens = QGuiApplication::screens();
  return qEnvironmentVariableIsSet("WAYLAND_DISPLAY") ||
         std::any_of(screens.begin(), screens.end(), [](const QScreen* screen) {
           return screen->name().startsWith(QLatin1String("XWAYLAND"));
         });
}

void X11Connection::dispatch() {
  if (isDispatching_) {
    return;
  }
  isDispatching_ = true;
  while (auto* raw = xcb_poll_for_event(connection_)) {
    const Event event(raw, FreeDeleter());
    if (event->response_type != 0) {  // 0: an error
      events_.set(event);
    }
  }
  isDispatching_ = false;
  if (xcb_connection_has_error(connection_) != 0 && notifier_->isEnabled()) {
    notifier_->setEnabled(false);
    logger.error("The X server has closed the connection: the panel can no longer be placed.");
  }
  xcb_flush(connection_);
}

xcb_atom_t X11Connection::atom(const std::string& name) {
  auto found = atoms_.find(name);
  if (found == atoms_.end()) {
    const auto cookie =
        xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.c_str());
    const X11Owned<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(connection_, cookie, nullptr));
    found = atoms_.emplace(name, reply ? reply->atom : xcb_atom_t{0}).first;
  }
  return found->second;
}

std::optional<std::uint8_t> X11Connection::firstEvent(xcb_extension_t& extension) const {
  const auto* data = xcb_get_extension_data(connection_, &extension);
  return data != nullptr && data->present != 0 ? std::optional(data->first_event) : std::nullopt;
}

std::vector<std::uint32_t> X11Connection::property(xcb_window_t window, xcb_atom_t name,
                                                   std::uint32_t limit) const {
  const auto cookie =
      xcb_get_property(connection_, 0, window, name, XCB_GET_PROPERTY_TYPE_ANY, 0, limit);
  const X11Owned<xcb_get_property_reply_t> reply(
      xcb_get_property_reply(connection_, cookie, nullptr));
  if (!reply || reply->format != 32) {
    return {};
  }
  const auto* values = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
  return {values, values + xcb_get_property_value_length(reply.get()) / 4};
}

std::shared_ptr<void> X11Connection::watchRoot(std::uint32_t mask) {
  rootMasks_->push_back(mask);
  updateRootMask();
  const std::weak_ptr<std::vector<std::uint32_t>> weak = rootMasks_;
  return {static_cast<void*>(this), [this, weak, mask](void*) {
            if (const auto masks = weak.lock()) {  // else the connection is gone
              masks->erase(std::find(masks->begin(), masks->end(), mask));
              updateRootMask();
            }
          }};
}

void X11Connection::updateRootMask() {
  std::uint32_t mask = 0;
  for (const std::uint32_t wanted : *rootMasks_) {
    mask |= wanted;
  }
  xcb_change_window_attributes(connection_, root(), XCB_CW_EVENT_MASK, &mask);
  flush();
}

}  // namespace plemora
