#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "adapters/linux/pipewire/correction_filter.h"

namespace plemora {

/// A place for one stream on a filter.
struct FilterSlot {
  CorrectionFilter* filter = nullptr;
  std::uint32_t index = 0;
  explicit operator bool() const { return filter != nullptr; }
};

/// The filters in use, by the sinks that they span. A full one gets a larger one beside it, to
/// which its streams move, as they do where the connection of theirs is spoilt; one that is no
/// longer used goes after a while. With the loop's lock held.
class FilterPool {
 public:
  /// onChange runs after anything that may bring a filter further.
  FilterPool(const PipeWireLoop& loop, std::function<void()> onChange);

  /// A free slot on a filter that spans exactly these sinks. None while filters cannot be made.
  FilterSlot take(const std::vector<SinkLayout>& sinks, double now);
  void giveBack(FilterSlot slot, double now);
  /// Whether the next slot taken for its sinks may be one of this filter.
  bool hasRoom(const CorrectionFilter& filter, double now) const;

  /// Follows the registry.
  void update(const GraphMirror& mirror);

  /// Removes what is broken (no slot of it may be in use) or has been unused for long. Returns the
  /// seconds until there is more to remove, 0 for never.
  double sweep(double now);

 private:
  struct Entry {
    std::unique_ptr<CorrectionFilter> filter;
    /// By slot: media time from which it is free; infinity while it is used.
    std::vector<double> freeFrom;
    double unusedSince = 0;
    bool isUnused() const;
    /// A slot that is free, or the number of slots.
    std::size_t freeSlot(double now) const;
  };
  Entry* make(const std::vector<SinkLayout>& sinks, std::uint32_t slots, double now);
  /// Null when there is none.
  std::shared_ptr<FilterConnection> connectionWithRoom() const;

  const PipeWireLoop& loop_;
  std::function<void()> onChange_;
  CorrectionScratch scratch_;
  std::vector<Entry> entries_;
  double retryAt_ = 0;           ///< media time before which no filter is made
  double nextConnectionAt_ = 0;  ///< media time before which no connection is made
};

}  // namespace plemora
