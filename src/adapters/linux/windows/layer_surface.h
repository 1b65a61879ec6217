#pragma once

#include <QMargins>
#include <QRegion>
#include <QSize>
#include <functional>

#include "adapters/linux/windows/layer_shell_connection.h"
#include "adapters/linux/windows/shm_buffers.h"

namespace plemora {

/// A surface above all windows of an output, bars and full-screen ones included, placed by its
/// distance from the output's edges. Asked for from the start; shown once it is configured and has
/// a picture. What is asked for takes effect at the next commit(). Main thread; goes before its
/// connection.
class LayerSurface {
 public:
  struct Handlers {
    /// The size that it has to draw, in points. Called while events are read.
    std::function<void(const QSize&)> configured;
    /// The compositor shows it no longer. Called while events are read.
    std::function<void()> closed;
  };

  /// The input must live as long as the surface. Output null: the compositor chooses one.
  LayerSurface(LayerShellConnection& connection, const WaylandOutput* output,
               WaylandSurfaceInput& input, Handlers handlers);
  ~LayerSurface();
  LayerSurface(const LayerSurface&) = delete;
  LayerSurface& operator=(const LayerSurface&) = delete;

  /// Anchors as zwlr_layer_surface_v1 numbers them; points. A length of 0 between two anchored
  /// edges: all there is.
  void place(std::uint32_t anchors, const QSize& size, const QMargins& margins = {});
  /// All keys go to it while it is shown.
  void takeKeys();
  /// Points; what is outside lets the pointer through to what is below.
  void setInputRegion(const QRegion& region);
  /// The picture of the whole surface. Drawn by now; busy afterwards. `shown`, if any, is called,
  /// while events are read, when it is time for the next one.
  void attach(ShmBuffers::Buffer& buffer, int scale, std::function<void()> shown = nullptr);
  void commit();

  /// Empty until it is configured.
  QSize size() const { return size_; }
  wl_surface* handle() { return surface_.get(); }

 private:
  struct Listeners;

  LayerShellConnection& connection_;
  WaylandSurfaceInput& input_;
  Handlers handlers_;
  WaylandOwned<wl_surface> surface_;
  WaylandOwned<zwlr_layer_surface_v1> layer_;  // goes before its surface
  WaylandOwned<wl_callback> frame_;
  std::function<void()> shown_;
  QSize wanted_;
  QSize size_;
};

}  // namespace plemora
