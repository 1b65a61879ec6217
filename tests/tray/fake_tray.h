#pragma once

#include <QProcess>
#include <memory>
#include <stdexcept>
#include <string>

#include "adapters/linux/tray/x11_link.h"

namespace plemora {

/// An X server of the test's own, without windows.
class PrivateDisplay {
 public:
  PrivateDisplay() {
    server_.start("Xvfb", {"-displayfd", "1", "-screen", "0", "800x600x24", "-nolisten", "tcp"});
    if (!server_.waitForReadyRead(20000)) {
      throw std::runtime_error("Xvfb does not start: " +
                               server_.readAllStandardError().toStdString());
    }
    name_ = ":" + server_.readLine().trimmed().toStdString();
  }
  ~PrivateDisplay() {
    server_.terminate();
    server_.waitForFinished();
  }

  std::unique_ptr<X11Link> connect() const { return X11Link::open(name_); }

 private:
  QProcess server_;
  std::string name_;
};

/// A panel with a system tray of X11, as long as it lives: 24 pixels high at the top of the screen,
/// in one colour. It puts icons at its right end.
class FakeTray {
 public:
  FakeTray(const PrivateDisplay& display, std::uint32_t color, bool offersAlpha = false)
      : x11_(display.connect()), panel_(xcb_generate_id(x11_->get())) {
    xcb_connection_t* x = x11_->get();
    const std::uint32_t values[] = {color, 1, XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY};
    xcb_create_window(x, XCB_COPY_FROM_PARENT, panel_, x11_->screen().root, 0, 0, width, height, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
    set("_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM, x11_->atom("_NET_WM_WINDOW_TYPE_DOCK"));
    if (offersAlpha) {
      set("_NET_SYSTEM_TRAY_VISUAL", XCB_ATOM_VISUALID, alphaVisual());
    }
    xcb_map_window(x, panel_);
    x11_->setEventHandler([this](const xcb_generic_event_t& event) { handle(event); });
    xcb_set_selection_owner(x, panel_, x11_->atom("_NET_SYSTEM_TRAY_S0"), XCB_CURRENT_TIME);
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = x11_->screen().root;
    message.type = x11_->atom("MANAGER");
    message.data.data32[1] = x11_->atom("_NET_SYSTEM_TRAY_S0");
    message.data.data32[2] = panel_;
    xcb_send_event(x, 0, x11_->screen().root, XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message));
    x11_->flush();
  }

  /// The embedded icon; none before there is one.
  xcb_window_t icon() const { return icon_; }
  X11Link& x11() { return *x11_; }

  void press(std::uint8_t button) {
    xcb_button_press_event_t event{};
    event.response_type = XCB_BUTTON_PRESS;
    event.detail = button;
    event.event = icon_;
    event.root = x11_->screen().root;
    xcb_send_event(x11_->get(), 0, icon_, XCB_EVENT_MASK_BUTTON_PRESS,
                   reinterpret_cast<const char*>(&event));
    x11_->flush();
  }
  void movePointer(int x, int y) {
    xcb_warp_pointer(x11_->get(), XCB_NONE, x11_->screen().root, 0, 0, 0, 0,
                     static_cast<std::int16_t>(x), static_cast<std::int16_t>(y));
    x11_->pointer();  // once it answers, the pointer is there
  }

  static constexpr std::uint16_t width = 800;
  static constexpr std::uint16_t height = 24;
  static constexpr std::uint16_t iconX = 770;

 private:
  void set(const char* name, xcb_atom_t type, std::uint32_t value) {
    xcb_change_property(x11_->get(), XCB_PROP_MODE_REPLACE, panel_, x11_->atom(name), type, 32, 1,
                        &value);
  }

  xcb_visualid_t alphaVisual() const {
    for (auto depth = xcb_screen_allowed_depths_iterator(&x11_->screen()); depth.rem > 0;
         xcb_depth_next(&depth)) {
      if (depth.data->depth == 32) {
        return xcb_depth_visuals_iterator(depth.data).data->visual_id;
      }
    }
    return 0;
  }

  void handle(const xcb_generic_event_t& event) {
    if ((event.response_type & 0x7f) != XCB_CLIENT_MESSAGE) {
      return;
    }
    const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
    if (message.type == x11_->atom("_NET_SYSTEM_TRAY_OPCODE") && message.data.data32[1] == 0) {
      icon_ = message.data.data32[2];
      const std::uint32_t size[] = {22, 22};
      xcb_configure_window(x11_->get(), icon_, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
                           size);
      xcb_reparent_window(x11_->get(), icon_, panel_, iconX, 1);
      xcb_map_window(x11_->get(), icon_);
      x11_->flush();
    }
  }

  std::unique_ptr<X11Link> x11_;
  xcb_window_t panel_;
  xcb_window_t icon_ = XCB_WINDOW_NONE;
};

}  // namespace plemora
