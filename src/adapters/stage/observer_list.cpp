#include "adapters/stage/observer_list.h"

#include <algorithm>
#include <utility>

namespace plemora {

struct ObserverList::Hold : AccessibilityObserver {
  explicit Hold(std::shared_ptr<Entry> held) : entry(std::move(held)) {}
  std::shared_ptr<Entry> entry;
};

std::unique_ptr<AccessibilityObserver> ObserverList::add(std::int32_t pid,
                                                         std::vector<std::string> notifications,
                                                         std::function<void()> handler) {
  std::erase_if(entries_, [](const auto& entry) { return entry.expired(); });
  auto entry = std::make_shared<Entry>(Entry{pid, std::move(notifications), std::move(handler)});
  entries_.push_back(entry);
  return std::make_unique<Hold>(std::move(entry));
}

void ObserverList::notify(std::int32_t pid, const std::string& notification) {
  // A snapshot: handlers come and go meanwhile.
  const auto round = entries_;
  for (const auto& weak : round) {
    const auto entry = weak.lock();
    if (entry && entry->pid == pid &&
        std::ranges::find(entry->notifications, notification) != entry->notifications.end()) {
      entry->handler();
    }
  }
}

int ObserverList::count() const {
  return static_cast<int>(
      std::ranges::count_if(entries_, [](const auto& entry) { return !entry.expired(); }));
}

}  // namespace plemora
