#include "windows/virtual_pointer.h"

#include <stdexcept>
#include <string_view>

extern "C" {
#include <virtual_pointer_client.h>
#include <virtual_pointer_tables.h>
}

namespace plemora {

namespace {

constexpr int pointsPerStep = 15;

constexpr wl_registry_listener registryListener = {
    .global =
        [](void* data, wl_registry* registry, std::uint32_t id, const char* interface,
           std::uint32_t) {
          if (std::string_view(interface) == zwlr_virtual_pointer_manager_v1_interface.name) {
            *static_cast<void**>(data) =
                wl_registry_bind(registry, id, &zwlr_virtual_pointer_manager_v1_interface, 1);
          }
        },
    .global_remove = [](void*, wl_registry*, std::uint32_t) {},
};

}  // namespace

VirtualPointer::VirtualPointer(const QSize& size)
    : size_(size),
      display_(wl_display_connect(nullptr)),
      registry_(display_ != nullptr ? wl_display_get_registry(display_) : nullptr) {
  void* manager = nullptr;
  if (registry_ != nullptr) {
    wl_registry_add_listener(registry_, &registryListener, &manager);
    wl_display_roundtrip(display_);
  }
  if (manager == nullptr) {
    throw std::runtime_error("the compositor takes no virtual pointer");
  }
  manager_ = static_cast<zwlr_virtual_pointer_manager_v1*>(manager);
  pointer_ = zwlr_virtual_pointer_manager_v1_create_virtual_pointer(manager_, nullptr);
  wl_display_roundtrip(display_);
}

VirtualPointer::~VirtualPointer() {
  zwlr_virtual_pointer_v1_destroy(pointer_);
  zwlr_virtual_pointer_manager_v1_destroy(manager_);
  wl_registry_destroy(registry_);
  wl_display_disconnect(display_);
}

void VirtualPointer::endFrame() {
  zwlr_virtual_pointer_v1_frame(pointer_);
  wl_display_roundtrip(display_);
}

void VirtualPointer::move(const QPoint& to) {
  zwlr_virtual_pointer_v1_motion_absolute(
      pointer_, ++time_, static_cast<std::uint32_t>(to.x()), static_cast<std::uint32_t>(to.y()),
      static_cast<std::uint32_t>(size_.width()), static_cast<std::uint32_t>(size_.height()));
  endFrame();
}

void VirtualPointer::press(std::uint32_t button, bool isDown) {
  zwlr_virtual_pointer_v1_button(pointer_, ++time_, button, isDown ? 1 : 0);
  endFrame();
}

void VirtualPointer::click(const QPoint& point, std::uint32_t button) {
  move(point);
  press(button, true);
  press(button, false);
}

void VirtualPointer::roll(int steps) {
  zwlr_virtual_pointer_v1_axis_source(pointer_, WL_POINTER_AXIS_SOURCE_WHEEL);
  zwlr_virtual_pointer_v1_axis_discrete(pointer_, ++time_, WL_POINTER_AXIS_VERTICAL_SCROLL,
                                        wl_fixed_from_int(steps * pointsPerStep), steps);
  endFrame();
}

}  // namespace plemora
