#include "windows/x_display.h"

#include <xcb/randr.h>
#include <xcb/shape.h>
#include <xcb/xtest.h>

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>
#include <stdexcept>

#include "adapters/linux/windows/linux_desktop.h"
#include "adapters/linux/windows/x11_connection.h"
#include "support/wait.h"

namespace plemora {

namespace {

constexpr int patience = 10;  // seconds

std::uint16_t size16(int value) {
  return static_cast<std::uint16_t>(value);
}
std::int16_t place16(int value) {
  return static_cast<std::int16_t>(value);
}

xcb_rectangle_t rectangle(const QRect& area) {
  return {place16(area.x()), place16(area.y()), size16(area.width()), size16(area.height())};
}

}  // namespace

XDisplay::XDisplay(const DisplaySetup& setup) {
  const auto start = [this](std::vector<std::string> arguments, bool readable = false) {
    programs_.push_back(std::make_unique<rig::ChildProcess>(
        rig::ChildOptions{std::move(arguments),
                          {"WAYLAND_DISPLAY", "DBUS_SESSION_BUS_ADDRESS=disabled:"},
                          "/dev/null",
                          readable}));
  };
  start({"Xvfb", "-displayfd", "1", "-screen", "0", "1000x700x24", "-nolisten", "tcp", "-noreset",
         "-nocursor"},
        true);
  const auto number = programs_.front()->readLine(patience);
  if (!number) {
    throw std::runtime_error("Xvfb did not start: is the package xvfb installed?");
  }
  qputenv("DISPLAY", QByteArray(":") + number->c_str());
  qunsetenv("WAYLAND_DISPLAY");
  xcb_ = xcb_connect(nullptr, nullptr);
  if (xcb_connection_has_error(xcb_) != 0) {
    throw std::runtime_error("no connection to Xvfb");
  }
  screen_ = xcb_setup_roots_iterator(xcb_get_setup(xcb_)).data;
  if (setup.background) {
    setRootPixmap(*setup.background);
  }
  if (setup.hasWindowManager) {
    start({"openbox", "--sm-disable"});
    if (!rig::eventually(patience, [&] {
          return !property(screen_->root, "_NET_SUPPORTING_WM_CHECK").empty();
        })) {
      throw std::runtime_error("openbox did not start");
    }
  }
  if (setup.hasCompositingManager) {
    start({"picom", "--backend", "xrender", "--config", "/dev/null"});
    // It owns the screen's selection some time before it paints.
    const auto window = makeWindow({0, 0, 10, 10}, ~*setup.background & 0xffffffU);
    const std::uint32_t none = 0;
    xcb_change_property(xcb_, XCB_PROP_MODE_REPLACE, window, atom("_NET_WM_WINDOW_OPACITY"),
                        XCB_ATOM_CARDINAL, 32, 1, &none);
    const bool paints = rig::eventually(patience, [&] {
      return pixel({5, 5}) == setup.background;
    });
    destroy(window);
    if (!paints) {
      throw std::runtime_error("picom did not start");
    }
  }
}

XDisplay::~XDisplay() {
  xcb_disconnect(xcb_);
  while (!programs_.empty()) {
    programs_.back()->stop();
    programs_.pop_back();
  }
}

xcb_atom_t XDisplay::atom(const std::string& name) {
  const auto cookie = xcb_intern_atom(xcb_, 0, size16(static_cast<int>(name.size())), name.c_str());
  const X11Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(xcb_, cookie, nullptr));
  return reply->atom;
}

void XDisplay::sync() {
  const X11Owned<xcb_get_input_focus_reply_t> reply(
      xcb_get_input_focus_reply(xcb_, xcb_get_input_focus(xcb_), nullptr));
}

void XDisplay::setRootPixmap(unsigned color) {
  const xcb_pixmap_t pixmap = xcb_generate_id(xcb_);
  xcb_create_pixmap(xcb_, screen_->root_depth, pixmap, screen_->root, 1000, 700);
  paint(pixmap, {0, 0, 1000, 700}, color);
  xcb_change_property(xcb_, XCB_PROP_MODE_REPLACE, screen_->root, atom("_XROOTPMAP_ID"),
                      XCB_ATOM_PIXMAP, 32, 1, &pixmap);
  xcb_change_window_attributes(xcb_, screen_->root, XCB_CW_BACK_PIXMAP, &pixmap);
  xcb_clear_area(xcb_, 0, screen_->root, 0, 0, 0, 0);
  sync();
}

xcb_window_t XDisplay::makeWindow(const QRect& frame, unsigned color, bool isManaged) {
  const xcb_window_t window = xcb_generate_id(xcb_);
  const std::uint32_t values[] = {color, isManaged ? 0U : 1U};
  xcb_create_window(xcb_, XCB_COPY_FROM_PARENT, window, screen_->root, place16(frame.x()),
                    place16(frame.y()), size16(frame.width()), size16(frame.height()), 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, screen_->root_visual,
                    XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
  if (isManaged) {
    // Position given by the user; no decorations (Motif's hints).
    const std::uint32_t sizeHints[18] = {1, static_cast<std::uint32_t>(frame.x()),
                                         static_cast<std::uint32_t>(frame.y())};
    xcb_change_property(xcb_, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NORMAL_HINTS,
                        XCB_ATOM_WM_SIZE_HINTS, 32, 18, sizeHints);
    const std::uint32_t plain[5] = {2, 0, 0, 0, 0};
    const xcb_atom_t hints = atom("_MOTIF_WM_HINTS");
    xcb_change_property(xcb_, XCB_PROP_MODE_REPLACE, window, hints, hints, 32, 5, plain);
  }
  xcb_map_window(xcb_, window);
  sync();
  int asked = 0;
  rig::eventually(patience, [&] {
    if (++asked % 25 == 0) {
      xcb_map_window(xcb_, window);  // a window manager that just starts overlooks some
    }
    return isShown(window);
  });
  return window;
}

bool XDisplay::isShown(xcb_window_t window) {
  const X11Owned<xcb_get_window_attributes_reply_t> reply(
      xcb_get_window_attributes_reply(xcb_, xcb_get_window_attributes(xcb_, window), nullptr));
  return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
}

void XDisplay::paint(xcb_window_t window, const QRect& area, unsigned color) {
  const xcb_gcontext_t context = xcb_generate_id(xcb_);
  const std::uint32_t value = color;
  const xcb_rectangle_t rect = rectangle(area);
  xcb_create_gc(xcb_, context, window, XCB_GC_FOREGROUND, &value);
  xcb_poly_fill_rectangle(xcb_, window, context, 1, &rect);
  xcb_free_gc(xcb_, context);
  sync();
}

void XDisplay::raise(xcb_window_t window) {
  const std::uint32_t above = XCB_STACK_MODE_ABOVE;
  xcb_configure_window(xcb_, window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
  sync();
}

void XDisplay::move(xcb_window_t window, const QPoint& to) {
  const std::int32_t values[] = {to.x(), to.y()};
  xcb_configure_window(xcb_, window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, values);
  sync();
}

void XDisplay::destroy(xcb_window_t window) {
  xcb_destroy_window(xcb_, window);
  sync();
}

void XDisplay::cutShape(xcb_window_t window, const QRect& remains) {
  const xcb_rectangle_t rect = rectangle(remains);
  xcb_shape_rectangles(xcb_, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, 0, window, 0, 0, 1, &rect);
  sync();
}

void XDisplay::reserve(xcb_window_t window, const std::array<std::uint32_t, 12>& strut) {
  xcb_change_property(xcb_, XCB_PROP_MODE_REPLACE, window, atom("_NET_WM_STRUT_PARTIAL"),
                      XCB_ATOM_CARDINAL, 32, 12, strut.data());
  sync();
}

bool XDisplay::reaches(const QRect& area) {
  return frameOf(screen_->root).contains(area);
}

unsigned XDisplay::pixel(const QPoint& point) {
  const auto cookie = xcb_get_image(xcb_, XCB_IMAGE_FORMAT_Z_PIXMAP, screen_->root,
                                    place16(point.x()), place16(point.y()), 1, 1, ~0U);
  const X11Owned<xcb_get_image_reply_t> reply(xcb_get_image_reply(xcb_, cookie, nullptr));
  return reply
             ? *reinterpret_cast<const std::uint32_t*>(xcb_get_image_data(reply.get())) & 0xffffffU
             : 0;
}

QRect XDisplay::frameOf(xcb_window_t window) {
  const auto geometryCookie = xcb_get_geometry(xcb_, window);
  const auto originCookie = xcb_translate_coordinates(xcb_, window, screen_->root, 0, 0);
  const X11Owned<xcb_get_geometry_reply_t> geometry(
      xcb_get_geometry_reply(xcb_, geometryCookie, nullptr));
  const X11Owned<xcb_translate_coordinates_reply_t> origin(
      xcb_translate_coordinates_reply(xcb_, originCookie, nullptr));
  return geometry && origin ? QRect(origin->dst_x, origin->dst_y, geometry->width, geometry->height)
                            : QRect();
}

std::vector<xcb_window_t> XDisplay::stack() {
  const X11Owned<xcb_query_tree_reply_t> tree(
      xcb_query_tree_reply(xcb_, xcb_query_tree(xcb_, screen_->root), nullptr));
  const auto* first = xcb_query_tree_children(tree.get());
  return {first, first + xcb_query_tree_children_length(tree.get())};
}

xcb_window_t XDisplay::focus() {
  const X11Owned<xcb_get_input_focus_reply_t> reply(
      xcb_get_input_focus_reply(xcb_, xcb_get_input_focus(xcb_), nullptr));
  return reply->focus;
}

void XDisplay::setFocus(xcb_window_t window) {
  xcb_set_input_focus(xcb_, XCB_INPUT_FOCUS_POINTER_ROOT, window, XCB_CURRENT_TIME);
  sync();
}

bool XDisplay::hasSelectionOwner(const std::string& name) {
  const X11Owned<xcb_get_selection_owner_reply_t> reply(
      xcb_get_selection_owner_reply(xcb_, xcb_get_selection_owner(xcb_, atom(name)), nullptr));
  return reply->owner != XCB_WINDOW_NONE;
}

std::vector<std::uint32_t> XDisplay::property(xcb_window_t window, const std::string& name) {
  const auto cookie =
      xcb_get_property(xcb_, 0, window, atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, 64);
  const X11Owned<xcb_get_property_reply_t> reply(xcb_get_property_reply(xcb_, cookie, nullptr));
  if (!reply) {
    return {};  // the window has gone
  }
  const auto* values = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
  return {values, values + xcb_get_property_value_length(reply.get()) / 4};
}

void XDisplay::fake(int type, int detail, const QPoint& point) {
  xcb_test_fake_input(xcb_, static_cast<std::uint8_t>(type), static_cast<std::uint8_t>(detail),
                      XCB_CURRENT_TIME, screen_->root, place16(point.x()), place16(point.y()), 0);
  sync();
}

void XDisplay::click(const QPoint& point, int button) {
  fake(XCB_MOTION_NOTIFY, 0, point);
  fake(XCB_BUTTON_PRESS, button);
  fake(XCB_BUTTON_RELEASE, button);
}

void XDisplay::drag(const QPoint& from, const QPoint& to) {
  constexpr int stops = 10;
  fake(XCB_MOTION_NOTIFY, 0, from);
  fake(XCB_BUTTON_PRESS, 1);
  for (int stop = 1; stop <= stops; ++stop) {
    fake(XCB_MOTION_NOTIFY, 0, from + (to - from) * stop / stops);
  }
  fake(XCB_BUTTON_RELEASE, 1);
}

void XDisplay::pressKey(unsigned keysym) {
  const auto* setup = xcb_get_setup(xcb_);
  const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
  const X11Owned<xcb_get_keyboard_mapping_reply_t> mapping(xcb_get_keyboard_mapping_reply(
      xcb_, xcb_get_keyboard_mapping(xcb_, setup->min_keycode, count), nullptr));
  const auto* symbols = xcb_get_keyboard_mapping_keysyms(mapping.get());
  for (int key = 0; key < count; ++key) {
    if (symbols[key * mapping->keysyms_per_keycode] == keysym) {
      fake(XCB_KEY_PRESS, setup->min_keycode + key);
      fake(XCB_KEY_RELEASE, setup->min_keycode + key);
      return;
    }
  }
  throw std::runtime_error("the display has no such key");
}

void XDisplay::setScreenSize(const QSize& size) {
  const X11Owned<xcb_randr_get_screen_resources_reply_t> resources(
      xcb_randr_get_screen_resources_reply(
          xcb_, xcb_randr_get_screen_resources(xcb_, screen_->root), nullptr));
  const xcb_randr_crtc_t crtc = *xcb_randr_get_screen_resources_crtcs(resources.get());
  const xcb_randr_output_t output = *xcb_randr_get_screen_resources_outputs(resources.get());
  xcb_randr_mode_info_t mode{};
  mode.width = size16(size.width());
  mode.height = size16(size.height());
  const std::string name = "test";
  mode.name_len = size16(static_cast<int>(name.size()));
  const auto modeCookie = xcb_randr_create_mode(
      xcb_, screen_->root, mode, static_cast<std::uint32_t>(name.size()), name.c_str());
  const X11Owned<xcb_randr_create_mode_reply_t> made(
      xcb_randr_create_mode_reply(xcb_, modeCookie, nullptr));
  if (!made) {
    throw std::runtime_error("the display takes no new mode");
  }
  xcb_randr_add_output_mode(xcb_, output, made->mode);
  xcb_grab_server(xcb_);
  const auto off = xcb_randr_set_crtc_config(xcb_, crtc, 0, resources->config_timestamp, 0, 0, 0,
                                             XCB_RANDR_ROTATION_ROTATE_0, 0, nullptr);
  X11Owned<xcb_randr_set_crtc_config_reply_t>(xcb_randr_set_crtc_config_reply(xcb_, off, nullptr));
  xcb_randr_set_screen_size(xcb_, screen_->root, mode.width, mode.height, 300, 200);
  const auto on = xcb_randr_set_crtc_config(xcb_, crtc, 0, resources->config_timestamp, 0, 0,
                                            made->mode, XCB_RANDR_ROTATION_ROTATE_0, 1, &output);
  X11Owned<xcb_randr_set_crtc_config_reply_t>(xcb_randr_set_crtc_config_reply(xcb_, on, nullptr));
  xcb_ungrab_server(xcb_);
  sync();
}

XApplication::XApplication() {
  qputenv("QT_QPA_PLATFORM", "xcb");
  qunsetenv("QT_SCALE_FACTOR");
  LinuxDesktop::prepare();
  application_ = std::make_unique<QGuiApplication>(count_, arguments_);
}

XApplication::~XApplication() = default;

bool waitUntil(const std::function<bool()>& question) {
  QElapsedTimer timer;
  timer.start();
  QTimer again;  // the loop blocks, as it does in the program, but not for long
  again.start(4);
  while (!question()) {
    if (timer.hasExpired(patience * 1000)) {
      return question();
    }
    QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
  }
  return true;
}

void settle() {
  int rounds = 0;
  waitUntil([&] { return ++rounds > 20; });
}

}  // namespace plemora
