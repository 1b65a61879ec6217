#include "adapters/linux/windows/wayland_seat.h"

#include <linux/input-event-codes.h>
#include <wayland-cursor.h>

#include <cstdlib>
#include <utility>

namespace plemora {

namespace {

constexpr int cursorSize = 24;
constexpr int degreesPerStep = 120;

WaylandSurfaceInput* inputOf(wl_surface* surface) {
  // A surface that has just been destroyed comes as null.
  return surface == nullptr ? nullptr
                            : static_cast<WaylandSurfaceInput*>(wl_surface_get_user_data(surface));
}

QPointF point(wl_fixed_t x, wl_fixed_t y) {
  return {wl_fixed_to_double(x), wl_fixed_to_double(y)};
}

Qt::MouseButton qtButton(std::uint32_t code) {
  switch (code) {
    case BTN_LEFT:
      return Qt::LeftButton;
    case BTN_RIGHT:
      return Qt::RightButton;
    case BTN_MIDDLE:
      return Qt::MiddleButton;
    default:
      return Qt::NoButton;
  }
}

}  // namespace

struct WaylandSeat::Listeners {
  static WaylandSeat& self(void* data) { return *static_cast<WaylandSeat*>(data); }

  static constexpr wl_seat_listener seat = {
      .capabilities = [](void* data, wl_seat*,
                         std::uint32_t all) { self(data).setCapabilities(all); },
      .name = [](void*, wl_seat*, const char*) {},
  };

  static constexpr wl_pointer_listener pointer = {
      .enter = [](void* data, wl_pointer*, std::uint32_t serial, wl_surface* surface, wl_fixed_t x,
                  wl_fixed_t y) { self(data).entered(serial, surface, point(x, y)); },
      .leave =
          [](void* data, wl_pointer*, std::uint32_t, wl_surface*) {
            self(data).send(WaylandPointer::Kind::leave);
            self(data).pointerOn_ = nullptr;
          },
      .motion =
          [](void* data, wl_pointer*, std::uint32_t time, wl_fixed_t x, wl_fixed_t y) {
            self(data).now_.time = time;
            self(data).now_.position = point(x, y);
            self(data).send(WaylandPointer::Kind::move);
          },
      .button = [](void* data, wl_pointer*, std::uint32_t, std::uint32_t time, std::uint32_t code,
                   std::uint32_t state) { self(data).button(time, code, state != 0); },
      .axis =
          [](void* data, wl_pointer*, std::uint32_t time, std::uint32_t axis, wl_fixed_t value) {
            self(data).now_.time = time;
            const double points = -wl_fixed_to_double(value);
            (axis == WL_POINTER_AXIS_VERTICAL_SCROLL ? self(data).scrolled_.ry()
                                                     : self(data).scrolled_.rx()) += points;
          },
      .frame = [](void* data, wl_pointer*) { self(data).frameEnded(); },
      .axis_source = [](void*, wl_pointer*, std::uint32_t) {},
      .axis_stop = [](void*, wl_pointer*, std::uint32_t, std::uint32_t) {},
      .axis_discrete =
          [](void* data, wl_pointer*, std::uint32_t axis, std::int32_t steps) {
            self(data).hasSteps_ = true;
            QPoint& degrees = self(data).now_.degrees;
            (axis == WL_POINTER_AXIS_VERTICAL_SCROLL ? degrees.ry() : degrees.rx()) -=
                steps * degreesPerStep;
          },
      .axis_value120 = nullptr,  // of a later version
  };

  static constexpr wl_keyboard_listener keyboard = {
      .keymap = [](void* data, wl_keyboard*, std::uint32_t, std::int32_t file,
                   std::uint32_t size) { self(data).keys_.setKeymap(file, size); },
      .enter =
          [](void* data, wl_keyboard*, std::uint32_t, wl_surface* surface, wl_array*) {
            self(data).keysOn_ = inputOf(surface);
            if (self(data).keysOn_ != nullptr) {
              self(data).keysOn_->keysChanged(true);
            }
          },
      .leave = [](void* data, wl_keyboard*, std::uint32_t, wl_surface*) { self(data).keysWent(); },
      .key = [](void* data, wl_keyboard*, std::uint32_t, std::uint32_t time, std::uint32_t code,
                std::uint32_t state) { self(data).keys_.key(time, code, state != 0); },
      .modifiers =
          [](void* data, wl_keyboard*, std::uint32_t, std::uint32_t depressed,
             std::uint32_t latched, std::uint32_t locked, std::uint32_t group) {
            self(data).keys_.setModifiers(depressed, latched, locked, group);
          },
      .repeat_info = [](void* data, wl_keyboard*, std::int32_t rate,
                        std::int32_t delay) { self(data).keys_.setRepeat(rate, delay); },
  };
};

void WaylandSeat::CursorDeleter::operator()(wl_cursor_theme* theme) const {
  wl_cursor_theme_destroy(theme);
}

WaylandSeat::WaylandSeat(WaylandOwned<wl_seat> seat, wl_compositor* compositor, wl_shm* shm)
    : seat_(std::move(seat)),
      shm_(shm),
      cursor_(wl_compositor_create_surface(compositor)),
      keys_([this](const WaylandKey& key) {
        if (keysOn_ != nullptr) {
          keysOn_->key(key);
        }
      }) {
  wl_seat_add_listener(seat_.get(), &Listeners::seat, this);
}

WaylandSeat::~WaylandSeat() = default;

void WaylandSeat::setCapabilities(std::uint32_t capabilities) {
  const bool hasPointer = (capabilities & WL_SEAT_CAPABILITY_POINTER) != 0;
  if (hasPointer != (pointer_ != nullptr)) {
    pointer_.reset(hasPointer ? wl_seat_get_pointer(seat_.get()) : nullptr);
    pointerOn_ = nullptr;
    now_ = {};
    if (pointer_) {
      wl_pointer_add_listener(pointer_.get(), &Listeners::pointer, this);
    }
  }
  const bool hasKeyboard = (capabilities & WL_SEAT_CAPABILITY_KEYBOARD) != 0;
  if (hasKeyboard != (keyboard_ != nullptr)) {
    keysWent();
    keyboard_.reset(hasKeyboard ? wl_seat_get_keyboard(seat_.get()) : nullptr);
    if (keyboard_) {
      wl_keyboard_add_listener(keyboard_.get(), &Listeners::keyboard, this);
    }
  }
}

void WaylandSeat::forget(const WaylandSurfaceInput* surface) {
  if (pointerOn_ == surface) {
    pointerOn_ = nullptr;
  }
  if (keysOn_ == surface) {
    keys_.stopRepeating();
    keysOn_ = nullptr;
  }
}

void WaylandSeat::entered(std::uint32_t serial, wl_surface* surface, const QPointF& position) {
  pointerOn_ = inputOf(surface);
  now_.position = position;
  now_.buttons = {};
  showCursor(serial);
  send(WaylandPointer::Kind::move);
}

void WaylandSeat::button(std::uint32_t time, std::uint32_t code, bool isPress) {
  now_.button = qtButton(code);
  if (now_.button == Qt::NoButton) {
    return;
  }
  now_.time = time;
  now_.buttons.setFlag(now_.button, isPress);
  send(isPress ? WaylandPointer::Kind::press : WaylandPointer::Kind::release);
  now_.button = Qt::NoButton;
}

void WaylandSeat::frameEnded() {
  if (!scrolled_.isNull() || hasSteps_) {
    if (!hasSteps_) {
      now_.pixels = scrolled_.toPoint();
      now_.degrees = now_.pixels * 8;
    }
    send(WaylandPointer::Kind::wheel);
  }
  now_.pixels = {};
  now_.degrees = {};
  scrolled_ = {};
  hasSteps_ = false;
}

void WaylandSeat::send(WaylandPointer::Kind kind) {
  if (pointerOn_ != nullptr) {
    WaylandPointer event = now_;
    event.kind = kind;
    event.modifiers = keys_.modifiers();
    pointerOn_->pointer(event);
  }
}

void WaylandSeat::keysWent() {
  keys_.stopRepeating();
  if (auto* surface = std::exchange(keysOn_, nullptr)) {
    surface->keysChanged(false);
  }
}

void WaylandSeat::showCursor(std::uint32_t serial) {
  if (!theme_) {
    const char* wanted = std::getenv("XCURSOR_SIZE");
    const int size = wanted != nullptr ? std::atoi(wanted) : 0;
    theme_.reset(
        wl_cursor_theme_load(std::getenv("XCURSOR_THEME"), size > 0 ? size : cursorSize, shm_));
  }
  wl_cursor* arrow = theme_ ? wl_cursor_theme_get_cursor(theme_.get(), "left_ptr") : nullptr;
  if (arrow == nullptr) {
    return;  // the pointer keeps the picture that it has
  }
  wl_cursor_image* image = arrow->images[0];
  wl_surface_attach(cursor_.get(), wl_cursor_image_get_buffer(image), 0, 0);
  wl_surface_damage(cursor_.get(), 0, 0, static_cast<std::int32_t>(image->width),
                    static_cast<std::int32_t>(image->height));
  wl_surface_commit(cursor_.get());
  wl_pointer_set_cursor(pointer_.get(), serial, cursor_.get(),
                        static_cast<std::int32_t>(image->hotspot_x),
                        static_cast<std::int32_t>(image->hotspot_y));
}

}  // namespace plemora
