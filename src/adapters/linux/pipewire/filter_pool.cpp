#include "adapters/linux/pipewire/filter_pool.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace plemora {

namespace {

// A desktop has a few players; a studio may have many: each further filter for the same sinks is
// larger, since every port costs the server memory and an announcement to all clients.
constexpr std::uint32_t firstSlotCount = 8;
constexpr std::uint32_t nextSlotCountFactor = 8;
constexpr std::uint32_t largestSlotCount = 64;

constexpr double keepUnusedSeconds = 2.0;

// For a moment after its links have been dropped, an input still has the buffers of its last
// stream. They must not be taken for the next one's.
constexpr double slotRestSeconds = 0.5;
constexpr double inUse = std::numeric_limits<double>::infinity();
constexpr double retryBrokenSeconds = 1.0;

// A server that ends every connection at once is not to be asked without end.
constexpr double betweenConnectionsSeconds = 0.2;

}  // namespace

bool FilterPool::Entry::isUnused() const {
  return std::find(freeFrom.begin(), freeFrom.end(), inUse) == freeFrom.end();
}

std::size_t FilterPool::Entry::freeSlot(double now) const {
  const auto free =
      std::find_if(freeFrom.begin(), freeFrom.end(), [now](double from) { return from <= now; });
  return static_cast<std::size_t>(free - freeFrom.begin());
}

FilterPool::FilterPool(const PipeWireLoop& loop, std::function<void()> onChange)
    : loop_(loop), onChange_(std::move(onChange)) {}

FilterSlot FilterPool::take(const std::vector<SinkLayout>& sinks, double now) {
  std::uint32_t largest = 0;
  std::uint32_t needed = firstSlotCount;
  Entry* found = nullptr;
  for (Entry& entry : entries_) {
    const std::uint32_t slots = entry.filter->slotCount();
    if (entry.filter->sinks() != sinks || entry.filter->isBroken()) {
      continue;
    }
    if (entry.filter->isSpoilt()) {
      needed = std::max(needed, slots);
      continue;
    }
    largest = std::max(largest, slots);
    if (entry.freeSlot(now) < slots && (found == nullptr || slots > found->filter->slotCount())) {
      found = &entry;
    }
  }
  if (found == nullptr) {
    const std::uint32_t next = std::min(largest * nextSlotCountFactor, largestSlotCount);
    found = make(sinks, std::max(next, needed), now);
  }
  if (found == nullptr) {
    return {};
  }
  const std::size_t slot = found->freeSlot(now);
  found->freeFrom[slot] = inUse;
  found->unusedSince = 0;
  return {found->filter.get(), static_cast<std::uint32_t>(slot)};
}

FilterPool::Entry* FilterPool::make(const std::vector<SinkLayout>& sinks, std::uint32_t slots,
                                    double now) {
  if (now < retryAt_) {
    return nullptr;
  }
  Entry entry;
  auto connection = connectionWithRoom();
  if (!connection && now < nextConnectionAt_) {
    retryAt_ = nextConnectionAt_;
    return nullptr;
  }
  if (!connection) {
    nextConnectionAt_ = now + betweenConnectionsSeconds;
    connection = std::make_shared<FilterConnection>(loop_, onChange_);
  }
  if (connection->core() == nullptr) {
    retryAt_ = now + retryBrokenSeconds;
    return nullptr;
  }
  entry.filter =
      std::make_unique<CorrectionFilter>(loop_, connection, sinks, slots, scratch_, onChange_);
  if (entry.filter->isBroken()) {
    retryAt_ = now + retryBrokenSeconds;
    return nullptr;
  }
  entry.freeFrom.resize(slots, 0.0);
  entries_.push_back(std::move(entry));
  return &entries_.back();
}

std::shared_ptr<FilterConnection> FilterPool::connectionWithRoom() const {
  for (const Entry& entry : entries_) {
    const auto filters = std::count_if(entries_.begin(), entries_.end(), [&](const Entry& other) {
      return other.filter->connection() == entry.filter->connection();
    });
    if (!entry.filter->isSpoilt() &&
        static_cast<std::size_t>(filters) < FilterConnection::mostFilters) {
      return entry.filter->connection();
    }
  }
  return nullptr;
}

void FilterPool::giveBack(FilterSlot slot, double now) {
  for (Entry& entry : entries_) {
    if (entry.filter.get() == slot.filter) {
      entry.freeFrom[slot.index] = now + slotRestSeconds;
    }
  }
}

bool FilterPool::hasRoom(const CorrectionFilter& filter, double now) const {
  return std::any_of(entries_.begin(), entries_.end(), [&](const Entry& entry) {
    return entry.filter.get() == &filter && !filter.isBroken() && !filter.isSpoilt() &&
           entry.freeSlot(now) < filter.slotCount();
  });
}

void FilterPool::update(const GraphMirror& mirror) {
  for (Entry& entry : entries_) {
    entry.filter->update(mirror);
  }
}

double FilterPool::sweep(double now) {
  double next = retryAt_ > now ? retryAt_ - now : 0;
  std::erase_if(entries_, [&](Entry& entry) {
    if (!entry.isUnused()) {
      return false;
    }
    if (entry.filter->isBroken()) {
      retryAt_ = now + retryBrokenSeconds;
      return true;
    }
    if (entry.filter->isSpoilt()) {
      return true;
    }
    if (entry.unusedSince == 0) {
      entry.unusedSince = now;
    }
    const double left = entry.unusedSince + keepUnusedSeconds - now;
    if (left > 0) {
      next = next == 0 ? left : std::min(next, left);
    }
    return left <= 0;
  });
  return next;
}

}  // namespace plemora
