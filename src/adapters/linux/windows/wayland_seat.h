#pragma once

#include <QPoint>
#include <QPointF>
#include <Qt>
#include <cstdint>
#include <memory>

#include "adapters/linux/windows/wayland_handles.h"
#include "adapters/linux/windows/wayland_keyboard.h"

struct wl_cursor_theme;

namespace plemora {

struct WaylandPointer {
  enum class Kind { move, press, release, wheel, leave };

  Kind kind = Kind::move;
  QPointF position;  ///< points from the surface's top left corner
  Qt::MouseButton button = Qt::NoButton;
  Qt::MouseButtons buttons;
  QPoint pixels;   ///< of a wheel that rolls smoothly
  QPoint degrees;  ///< eighths, as QWheelEvent counts them
  Qt::KeyboardModifiers modifiers;
  std::uint32_t time = 0;  ///< milliseconds
};

/// What the events of one surface are given to: the surface's user data. Called while events are
/// read, when no surface may be destroyed.
class WaylandSurfaceInput {
 public:
  virtual ~WaylandSurfaceInput() = default;

  virtual void pointer(const WaylandPointer& event) = 0;
  virtual void key(const WaylandKey& key) = 0;
  virtual void keysChanged(bool areHere) = 0;
};

/// The pointer and the keyboard of a seat, and the pointer's picture over our surfaces. Main
/// thread.
class WaylandSeat {
 public:
  /// The highest version of wl_seat that is understood here.
  static constexpr std::uint32_t version = 5;

  WaylandSeat(WaylandOwned<wl_seat> seat, wl_compositor* compositor, wl_shm* shm);
  ~WaylandSeat();

  /// Before a surface goes.
  void forget(const WaylandSurfaceInput* surface);
  bool hasKeys() const { return keysOn_ != nullptr; }

 private:
  struct Listeners;
  struct CursorDeleter {
    void operator()(wl_cursor_theme* theme) const;
  };

  void setCapabilities(std::uint32_t capabilities);
  void entered(std::uint32_t serial, wl_surface* surface, const QPointF& position);
  void button(std::uint32_t time, std::uint32_t code, bool isPress);
  void frameEnded();
  void send(WaylandPointer::Kind kind);
  void keysWent();
  void showCursor(std::uint32_t serial);

  WaylandOwned<wl_seat> seat_;
  wl_shm* shm_;
  std::unique_ptr<wl_cursor_theme, CursorDeleter> theme_;
  WaylandOwned<wl_surface> cursor_;
  WaylandOwned<wl_pointer> pointer_;
  WaylandOwned<wl_keyboard> keyboard_;
  WaylandKeyboard keys_;

  WaylandSurfaceInput* pointerOn_ = nullptr;
  WaylandSurfaceInput* keysOn_ = nullptr;
  WaylandPointer now_;
  bool hasSteps_ = false;  ///< the wheel of this frame clicks
  QPointF scrolled_;       ///< points, in this frame
};

}  // namespace plemora
