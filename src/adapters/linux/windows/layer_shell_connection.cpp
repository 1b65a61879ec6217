#include "adapters/linux/windows/layer_shell_connection.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include "base/log.h"

namespace plemora {

namespace {

constexpr Logger logger("windows");

}  // namespace

struct LayerShellConnection::Listeners {
  static LayerShellConnection& self(void* data) {
    return *static_cast<LayerShellConnection*>(data);
  }
  static WaylandOutput& out(void* data) { return *static_cast<WaylandOutput*>(data); }

  static constexpr wl_registry_listener registry = {
      .global = [](void* data, wl_registry*, std::uint32_t id, const char* interface,
                   std::uint32_t version) { self(data).announced(id, interface, version); },
      .global_remove = [](void* data, wl_registry*, std::uint32_t id) { self(data).withdrawn(id); },
  };

  static constexpr wl_output_listener output = {
      .geometry = [](void*, wl_output*, std::int32_t, std::int32_t, std::int32_t, std::int32_t,
                     std::int32_t, const char*, const char*, std::int32_t) {},
      .mode = [](void*, wl_output*, std::uint32_t, std::int32_t, std::int32_t, std::int32_t) {},
      .done = [](void*, wl_output*) {},
      .scale = [](void* data, wl_output*,
                  std::int32_t scale) { out(data).scale = std::max(1, scale); },
      .name = [](void* data, wl_output*, const char* name) { out(data).name = name; },
      .description = [](void*, wl_output*, const char*) {},
  };
};

LayerShellConnection::LayerShellConnection(wl_display* display)
    : display_(display), registry_(wl_display_get_registry(display)) {
  wl_registry_add_listener(registry_.get(), &Listeners::registry, this);
}

LayerShellConnection::~LayerShellConnection() {
  if (notifier_) {
    notifier_->setEnabled(false);
    notifier_.release()->deleteLater();  // it may be what called us
  }
}

std::unique_ptr<LayerShellConnection> LayerShellConnection::open() {
  wl_display* display = wl_display_connect(nullptr);
  if (display == nullptr) {
    return nullptr;
  }
  std::unique_ptr<LayerShellConnection> result(new LayerShellConnection(display));
  // The first answer brings what there is, the second what it is like.
  if (wl_display_roundtrip(display) < 0 || !result->shell_ || !result->compositor_ ||
      !result->shm_) {
    return nullptr;
  }
  if (result->unusedSeat_) {
    result->seat_ = std::make_unique<WaylandSeat>(std::move(result->unusedSeat_),
                                                  result->compositor(), result->shm());
  }
  if (wl_display_roundtrip(display) < 0) {
    return nullptr;
  }
  result->notifier_ =
      std::make_unique<QSocketNotifier>(wl_display_get_fd(display), QSocketNotifier::Read);
  QObject::connect(result->notifier_.get(), &QSocketNotifier::activated, result->notifier_.get(),
                   [connection = result.get()] { connection->read(); });
  return result;
}

void LayerShellConnection::announced(std::uint32_t id, const std::string& interface,
                                     std::uint32_t version) {
  const auto bind = [&]<typename Object>(WaylandOwned<Object>& to, const wl_interface& kind,
                                         std::uint32_t highest) {
    if (interface == kind.name && !to) {
      to.reset(static_cast<Object*>(
          wl_registry_bind(registry_.get(), id, &kind, std::min(version, highest))));
    }
  };
  bind(compositor_, wl_compositor_interface, 4);
  bind(shm_, wl_shm_interface, 1);
  bind(shell_, zwlr_layer_shell_v1_interface, 4);
  bind(viewporter_, wp_viewporter_interface, 1);
  if (!seat_) {
    bind(unusedSeat_, wl_seat_interface, WaylandSeat::version);
  }
  if (interface == wl_output_interface.name) {
    auto output = std::make_unique<WaylandOutput>();
    output->id = id;
    bind(output->handle, wl_output_interface, 4);
    wl_output_add_listener(output->handle.get(), &Listeners::output, output.get());
    outputs_.push_back(std::move(output));
  }
}

void LayerShellConnection::withdrawn(std::uint32_t id) {
  std::erase_if(outputs_, [&](const auto& output) { return output->id == id; });
}

const WaylandOutput* LayerShellConnection::output(const std::string& name) const {
  const auto found = std::find_if(outputs_.begin(), outputs_.end(),
                                  [&](const auto& output) { return output->name == name; });
  return found == outputs_.end() ? nullptr : found->get();
}

void LayerShellConnection::flush() {
  wl_display_flush(display_.get());
}

void LayerShellConnection::read() {
  if (wl_display_dispatch(display_.get()) >= 0) {
    flush();
    return;
  }
  notifier_->setEnabled(false);
  logger.error("The compositor has ended the connection that shows the panel: it is closed.");
  if (const auto lost = std::exchange(lost_, nullptr)) {
    lost();
  }
}

}  // namespace plemora
