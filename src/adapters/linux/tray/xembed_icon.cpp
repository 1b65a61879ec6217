#include "adapters/linux/tray/xembed_icon.h"

#include <QPainter>
#include <algorithm>
#include <utility>

namespace plemora {

namespace {

constexpr std::uint32_t requestDock = 0;
constexpr std::uint32_t xembedMapped = 1;
constexpr std::uint8_t sentEventBit = 0x80;
constexpr std::uint32_t sizeHintMinimum = 1 << 4;
constexpr std::uint16_t firstSize = 24;

int depthOf(const xcb_screen_t& screen, xcb_visualid_t visual) {
  for (auto depth = xcb_screen_allowed_depths_iterator(&screen); depth.rem > 0;
       xcb_depth_next(&depth)) {
    for (auto one = xcb_depth_visuals_iterator(depth.data); one.rem > 0;
         xcb_visualtype_next(&one)) {
      if (one.data->visual_id == visual) {
        return depth.data->depth;
      }
    }
  }
  return 0;
}

}  // namespace

XembedIcon::XembedIcon(X11Link& x11, std::string tip, TrayShade shade, Handlers handlers)
    : x11_(x11),
      tip_(std::move(tip)),
      shade_(shade),
      handlers_(std::move(handlers)),
      selection_(x11.atom("_NET_SYSTEM_TRAY_S" + std::to_string(x11.screenNumber()))) {
  x11_.setEventHandler([this](const xcb_generic_event_t& event) { handle(event); });
  // New trays announce themselves on the root window.
  const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
  xcb_change_window_attributes(x11_.get(), x11_.screen().root, XCB_CW_EVENT_MASK, &mask);
  findTray();
}

XembedIcon::~XembedIcon() {
  x11_.setEventHandler({});
  leave();
  const std::uint32_t mask = 0;
  xcb_change_window_attributes(x11_.get(), x11_.screen().root, XCB_CW_EVENT_MASK, &mask);
  x11_.flush();
}

void XembedIcon::findTray() {
  xcb_connection_t* x = x11_.get();
  // Grabbed, so that the tray cannot go between its finding and our listening.
  xcb_grab_server(x);
  const XcbReply<xcb_get_selection_owner_reply_t> owner(
      xcb_get_selection_owner_reply(x, xcb_get_selection_owner(x, selection_), nullptr));
  const xcb_window_t tray = owner ? owner->owner : xcb_window_t{XCB_WINDOW_NONE};
  if (tray != XCB_WINDOW_NONE) {
    const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(x, tray, XCB_CW_EVENT_MASK, &mask);
  }
  xcb_ungrab_server(x);
  if (tray != tray_) {
    leave();
    tray_ = tray;
    if (tray_ != XCB_WINDOW_NONE) {
      dock();
    }
  }
  x11_.flush();
}

void XembedIcon::leave() {
  if (window_ != XCB_WINDOW_NONE) {
    xcb_destroy_window(x11_.get(), window_);
    window_ = XCB_WINDOW_NONE;
  }
  if (colors_ != XCB_NONE) {
    xcb_free_colormap(x11_.get(), colors_);
    colors_ = XCB_NONE;
  }
  tray_ = XCB_WINDOW_NONE;
  size_ = {};
}

void XembedIcon::makeWindow() {
  xcb_connection_t* x = x11_.get();
  const xcb_screen_t& screen = x11_.screen();
  const auto offered = x11_.property(tray_, "_NET_SYSTEM_TRAY_VISUAL");
  xcb_visualid_t visual = screen.root_visual;
  depth_ = screen.root_depth;
  if (!offered.empty() && depthOf(screen, offered[0]) == 32) {
    visual = offered[0];
    depth_ = 32;
  }
  constexpr std::uint32_t events =
      XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_BUTTON_PRESS;
  window_ = xcb_generate_id(x);
  // A tray that wants it that large tells of no change.
  size_ = QSize(firstSize, firstSize);
  if (depth_ == 32) {
    colors_ = xcb_generate_id(x);
    xcb_create_colormap(x, XCB_COLORMAP_ALLOC_NONE, colors_, screen.root, visual);
    const std::uint32_t values[] = {0, 0, events, colors_};
    xcb_create_window(x, 32, window_, screen.root, 0, 0, firstSize, firstSize, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP,
                      values);
  } else {
    const std::uint32_t values[] = {XCB_BACK_PIXMAP_PARENT_RELATIVE, events};
    xcb_create_window(x, XCB_COPY_FROM_PARENT, window_, screen.root, 0, 0, firstSize, firstSize, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, visual, XCB_CW_BACK_PIXMAP | XCB_CW_EVENT_MASK,
                      values);
  }
}

void XembedIcon::describeWindow() {
  xcb_connection_t* x = x11_.get();
  constexpr char windowClass[] = "plemora\0Plemora";
  xcb_change_property(x, XCB_PROP_MODE_REPLACE, window_, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8,
                      sizeof windowClass, windowClass);
  xcb_change_property(x, XCB_PROP_MODE_REPLACE, window_, x11_.atom("_NET_WM_NAME"),
                      x11_.atom("UTF8_STRING"), 8, static_cast<std::uint32_t>(tip_.size()),
                      tip_.data());
  // Some trays give an icon no more room than it asks for.
  std::uint32_t hints[18] = {};
  hints[0] = sizeHintMinimum;
  hints[5] = hints[6] = firstSize;
  xcb_change_property(x, XCB_PROP_MODE_REPLACE, window_, XCB_ATOM_WM_NORMAL_HINTS,
                      XCB_ATOM_WM_SIZE_HINTS, 32, 18, hints);
  const std::uint32_t info[] = {0, xembedMapped};
  const xcb_atom_t infoAtom = x11_.atom("_XEMBED_INFO");
  xcb_change_property(x, XCB_PROP_MODE_REPLACE, window_, infoAtom, infoAtom, 32, 2, info);
}

void XembedIcon::dock() {
  makeWindow();
  describeWindow();
  xcb_client_message_event_t message{};
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = 32;
  message.window = tray_;
  message.type = x11_.atom("_NET_SYSTEM_TRAY_OPCODE");
  message.data.data32[0] = XCB_CURRENT_TIME;
  message.data.data32[1] = requestDock;
  message.data.data32[2] = window_;
  xcb_send_event(x11_.get(), 0, tray_, XCB_EVENT_MASK_NO_EVENT,
                 reinterpret_cast<const char*>(&message));
}

void XembedIcon::handle(const xcb_generic_event_t& event) {
  switch (event.response_type & ~sentEventBit) {
    case XCB_CLIENT_MESSAGE: {
      const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
      if (message.type == x11_.atom("MANAGER") && message.data.data32[1] == selection_) {
        findTray();
      }
      break;
    }
    case XCB_DESTROY_NOTIFY: {
      const xcb_window_t gone = reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window;
      if (gone == window_) {
        window_ = XCB_WINDOW_NONE;
      }
      if (gone == tray_) {
        leave();
        findTray();
      }
      break;
    }
    case XCB_CONFIGURE_NOTIFY: {
      const auto& change = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
      if (change.window == window_ && size_ != QSize(change.width, change.height)) {
        size_ = QSize(change.width, change.height);
        update();
      }
      break;
    }
    case XCB_EXPOSE:
      if (reinterpret_cast<const xcb_expose_event_t&>(event).count == 0) {
        update();
      }
      break;
    case XCB_BUTTON_PRESS:
      pressed(reinterpret_cast<const xcb_button_press_event_t&>(event).detail);
      break;
    default:
      break;
  }
}

void XembedIcon::pressed(std::uint8_t button) {
  switch (button) {
    case 1:
      handlers_.clicked(StatusButtonEvent::leftMouseDown);
      break;
    case 2:
      handlers_.clicked(StatusButtonEvent::middleMouseDown);
      break;
    case 3:
      handlers_.clicked(StatusButtonEvent::rightMouseDown);
      break;
    case 4:
      handlers_.scrolled(1);
      break;
    case 5:
      handlers_.scrolled(-1);
      break;
    default:
      break;
  }
}

QImage XembedIcon::background(bool& isSeen) {
  QImage image;
  isSeen = false;
  if (depth_ != 32) {
    // The server paints the tray's own background into our window; we read it back.
    xcb_clear_area(x11_.get(), 0, window_, 0, 0, 0, 0);
    image = x11_.picture(window_, QRect(QPoint(), size_));
    isSeen = !image.isNull();
  }
  if (image.isNull()) {
    image = QImage(size_, QImage::Format_ARGB32_Premultiplied);
    image.fill(depth_ == 32 ? Qt::transparent : Qt::black);
  }
  return image;
}

void XembedIcon::update() {
  if (window_ == XCB_WINDOW_NONE || size_.isEmpty() || !x11_.shownRect(window_)) {
    return;
  }
  bool isSeen = false;
  QImage image = background(isSeen);
  const TrayShade shade = isSeen ? shadeOf(image, shade_) : depth_ == 32 ? shade_ : TrayShade::dark;
  const int side = std::min(size_.width(), size_.height());
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  if (isHighlighted_) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(shade == TrayShade::dark ? QColor(255, 255, 255, 60) : QColor(0, 0, 0, 40));
    painter.drawRoundedRect(image.rect(), side / 6.0, side / 6.0);
  }
  // Trays leave no margin of their own.
  const int inner = side - 2 * (side / 10);
  painter.drawImage((size_.width() - inner) / 2, (size_.height() - inner) / 2,
                    handlers_.draw(inner, shade));
  painter.end();

  const QImage pixels = image.convertToFormat(depth_ == 32 ? QImage::Format_ARGB32_Premultiplied
                                                           : QImage::Format_RGB32);
  const xcb_gcontext_t context = xcb_generate_id(x11_.get());
  xcb_create_gc(x11_.get(), context, window_, 0, nullptr);
  xcb_put_image(x11_.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, window_, context,
                static_cast<std::uint16_t>(size_.width()),
                static_cast<std::uint16_t>(size_.height()), 0, 0, 0,
                static_cast<std::uint8_t>(depth_), static_cast<std::uint32_t>(pixels.sizeInBytes()),
                pixels.constBits());
  xcb_free_gc(x11_.get(), context);
  x11_.flush();
}

void XembedIcon::setHighlighted(bool isHighlighted) {
  if (isHighlighted != isHighlighted_) {
    isHighlighted_ = isHighlighted;
    update();
  }
}

void XembedIcon::setShade(TrayShade shade) {
  shade_ = shade;
  update();
}

std::optional<QRect> XembedIcon::frame() {
  return window_ == XCB_WINDOW_NONE || size_.isEmpty() ? std::nullopt : x11_.shownRect(window_);
}

}  // namespace plemora
