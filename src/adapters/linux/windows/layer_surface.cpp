#include "adapters/linux/windows/layer_surface.h"

#include <utility>

namespace plemora {

namespace {

/// Not moved out of the way of bars.
constexpr int ignoresOthers = -1;
constexpr std::uint32_t exclusiveKeys = 1;

}  // namespace

struct LayerSurface::Listeners {
  static LayerSurface& self(void* data) { return *static_cast<LayerSurface*>(data); }

  static constexpr zwlr_layer_surface_v1_listener layer = {
      .configure =
          [](void* data, zwlr_layer_surface_v1* layer, std::uint32_t serial, std::uint32_t width,
             std::uint32_t height) {
            zwlr_layer_surface_v1_ack_configure(layer, serial);
            const QSize size(static_cast<int>(width), static_cast<int>(height));
            LayerSurface& surface = self(data);
            surface.size_ = {size.width() > 0 ? size.width() : surface.wanted_.width(),
                             size.height() > 0 ? size.height() : surface.wanted_.height()};
            surface.handlers_.configured(surface.size_);
          },
      .closed = [](void* data, zwlr_layer_surface_v1*) { self(data).handlers_.closed(); },
  };

  static constexpr wl_callback_listener frame = {
      .done = [](void* data, wl_callback*, std::uint32_t) {
        self(data).frame_.reset();
        if (const auto shown = std::exchange(self(data).shown_, nullptr)) {
          shown();
        }
      }};
};

LayerSurface::LayerSurface(LayerShellConnection& connection, const WaylandOutput* output,
                           WaylandSurfaceInput& input, Handlers handlers)
    : connection_(connection),
      input_(input),
      handlers_(std::move(handlers)),
      surface_(wl_compositor_create_surface(connection.compositor())),
      layer_(zwlr_layer_shell_v1_get_layer_surface(
          connection.shell(), surface_.get(), output != nullptr ? output->handle.get() : nullptr,
          ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY, "plemora")) {
  wl_surface_set_user_data(surface_.get(), &input);
  zwlr_layer_surface_v1_add_listener(layer_.get(), &Listeners::layer, this);
  zwlr_layer_surface_v1_set_exclusive_zone(layer_.get(), ignoresOthers);
}

LayerSurface::~LayerSurface() {
  if (connection_.seat() != nullptr) {
    connection_.seat()->forget(&input_);
  }
  layer_.reset();
  surface_.reset();
  connection_.flush();
}

void LayerSurface::place(std::uint32_t anchors, const QSize& size, const QMargins& margins) {
  wanted_ = size;
  zwlr_layer_surface_v1_set_anchor(layer_.get(), anchors);
  zwlr_layer_surface_v1_set_size(layer_.get(), static_cast<std::uint32_t>(size.width()),
                                 static_cast<std::uint32_t>(size.height()));
  zwlr_layer_surface_v1_set_margin(layer_.get(), margins.top(), margins.right(), margins.bottom(),
                                   margins.left());
}

void LayerSurface::takeKeys() {
  zwlr_layer_surface_v1_set_keyboard_interactivity(layer_.get(), exclusiveKeys);
}

void LayerSurface::setInputRegion(const QRegion& region) {
  const WaylandOwned<wl_region> shape(wl_compositor_create_region(connection_.compositor()));
  for (const QRect& part : region) {
    wl_region_add(shape.get(), part.x(), part.y(), part.width(), part.height());
  }
  wl_surface_set_input_region(surface_.get(), shape.get());
}

void LayerSurface::attach(ShmBuffers::Buffer& buffer, int scale, std::function<void()> shown) {
  buffer.isBusy = true;
  wl_surface_set_buffer_scale(surface_.get(), scale);
  wl_surface_attach(surface_.get(), buffer.handle.get(), 0, 0);
  wl_surface_damage_buffer(surface_.get(), 0, 0, buffer.image.width(), buffer.image.height());
  if (shown) {
    shown_ = std::move(shown);
    frame_.reset(wl_surface_frame(surface_.get()));
    wl_callback_add_listener(frame_.get(), &Listeners::frame, this);
  }
}

void LayerSurface::commit() {
  wl_surface_commit(surface_.get());
  connection_.flush();
}

}  // namespace plemora
