#pragma once

#include <wayland-client.h>

#include <QPoint>
#include <QSize>

struct zwlr_virtual_pointer_manager_v1;
struct zwlr_virtual_pointer_v1;

namespace plemora {

/// A pointing device of the compositor that WAYLAND_DISPLAY names. Each operation has been seen by
/// the compositor when it returns.
class VirtualPointer {
 public:
  /// The size of the compositor's only output, in points.
  explicit VirtualPointer(const QSize& size);
  ~VirtualPointer();
  VirtualPointer(const VirtualPointer&) = delete;
  VirtualPointer& operator=(const VirtualPointer&) = delete;

  void move(const QPoint& to);
  /// BTN_LEFT and so on.
  void press(std::uint32_t button, bool isDown);
  void click(const QPoint& point, std::uint32_t button);
  /// Steps of a wheel; positive: towards the user.
  void roll(int steps);

 private:
  void endFrame();

  QSize size_;
  wl_display* display_;
  wl_registry* registry_;
  zwlr_virtual_pointer_manager_v1* manager_ = nullptr;
  zwlr_virtual_pointer_v1* pointer_ = nullptr;
  std::uint32_t time_ = 0;
};

}  // namespace plemora
