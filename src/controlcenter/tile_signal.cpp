#include "controlcenter/tile_signal.h"

#include <utility>

#include "platform/darwin_notifications.h"
#include "platform/main_queue.h"

namespace plemora {

struct TileSignal::Slot {
  std::function<void()> handler;  // main thread
};

TileSignal::TileSignal(DarwinNotifications& notifications, MainQueue& queue)
    : notifications_(notifications), queue_(queue), slot_(std::make_shared<Slot>()) {}

TileSignal::~TileSignal() = default;

void TileSignal::observe(std::function<void()> handler) {
  slot_->handler = std::move(handler);
  // Called on any thread, and for longer than this lives.
  notifications_.observe(name, [&queue = queue_, slot = std::weak_ptr(slot_)] {
    queue.async([slot] {
      const auto held = slot.lock();
      // A copy, for a handler that puts another one in its place.
      if (const auto called = held ? held->handler : nullptr) {
        called();
      }
    });
  });
}

}  // namespace plemora
