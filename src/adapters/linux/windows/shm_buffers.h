#pragma once

#include <QImage>
#include <QSize>
#include <array>
#include <functional>

#include "adapters/linux/windows/wayland_handles.h"

namespace plemora {

/// Pictures of one size in memory shared with the compositor: one to be drawn into while it reads
/// the other. Main thread; goes before its connection.
class ShmBuffers {
 public:
  struct Buffer {
    WaylandOwned<wl_buffer> handle;
    QImage image;         ///< premultiplied; its pixels are the buffer's
    bool isBusy = false;  ///< the compositor reads it; set by whoever attaches it
    ShmBuffers* owner = nullptr;
  };

  /// Pixels; transparent at first. Without memory it is invalid, and that is logged.
  ShmBuffers(
      wl_shm* shm, const QSize& size, std::function<void()> released = [] {});
  ~ShmBuffers();
  ShmBuffers(const ShmBuffers&) = delete;
  ShmBuffers& operator=(const ShmBuffers&) = delete;

  bool isValid() const { return memory_ != nullptr; }
  QSize size() const { return size_; }
  /// One that is not busy; null: wait for released().
  Buffer* idle();
  /// Told by the compositor.
  void bufferReleased();

 private:
  QSize size_;
  std::function<void()> released_;
  std::size_t bytes_ = 0;
  void* memory_ = nullptr;
  std::array<Buffer, 2> buffers_;
};

}  // namespace plemora
