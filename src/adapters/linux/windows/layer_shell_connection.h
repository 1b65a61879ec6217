#pragma once

#include <QSocketNotifier>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "adapters/linux/windows/wayland_handles.h"
#include "adapters/linux/windows/wayland_seat.h"

namespace plemora {

/// A screen, as the compositor announces it.
struct WaylandOutput {
  std::uint32_t id = 0;  ///< of the global
  WaylandOwned<wl_output> handle;
  std::string name;  ///< QScreen::name; empty where the compositor is older
  int scale = 1;     ///< pixels per point
};

/// A connection of our own to a compositor that has the layer shell, beside the toolkit's. Lives
/// while a panel is shown; events are read and handed out by the event loop. Main thread.
class LayerShellConnection {
 public:
  /// Null where there is no compositor, or none with a layer shell.
  static std::unique_ptr<LayerShellConnection> open();
  ~LayerShellConnection();
  LayerShellConnection(const LayerShellConnection&) = delete;
  LayerShellConnection& operator=(const LayerShellConnection&) = delete;

  wl_compositor* compositor() { return compositor_.get(); }
  wl_shm* shm() { return shm_.get(); }
  zwlr_layer_shell_v1* shell() { return shell_.get(); }
  wp_viewporter* viewporter() { return viewporter_.get(); }  ///< may be null
  WaylandSeat* seat() { return seat_.get(); }                ///< may be null
  const std::vector<std::unique_ptr<WaylandOutput>>& outputs() const { return outputs_; }
  /// Null: there is none of that name.
  const WaylandOutput* output(const std::string& name) const;

  /// Sends what was asked for. Before control goes back to the event loop.
  void flush();
  /// Called once when the compositor ends the connection, and as the first thing that happens in
  /// that turn of the event loop.
  void setLostHandler(std::function<void()> lost) { lost_ = std::move(lost); }

 private:
  struct Listeners;

  explicit LayerShellConnection(wl_display* display);
  void announced(std::uint32_t id, const std::string& interface, std::uint32_t version);
  void withdrawn(std::uint32_t id);
  void read();

  WaylandOwned<wl_display> display_;
  WaylandOwned<wl_registry> registry_;
  WaylandOwned<wl_compositor> compositor_;
  WaylandOwned<wl_shm> shm_;
  WaylandOwned<zwlr_layer_shell_v1> shell_;
  WaylandOwned<wp_viewporter> viewporter_;
  WaylandOwned<wl_seat> unusedSeat_;  ///< until all is announced
  std::unique_ptr<WaylandSeat> seat_;
  std::vector<std::unique_ptr<WaylandOutput>> outputs_;
  std::unique_ptr<QSocketNotifier> notifier_;
  std::function<void()> lost_;
};

}  // namespace plemora
