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
/// which its streams move; one that is no longer used goes after a while. With the loop's lock
/// held.
class FilterPool {
 public:
  /// onChange runs after anything that may bring a filter further.
  FilterPool(const PipeWireLoop& loop, pw_core* core, std::function<void()> onChange);
  ~FilterPool();

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
    std::size_t core = 0;  ///< connection that it lives on
    double unusedSince = 0;
    bool isUnused() const;
    /// A slot that is free, or the number of slots.
    std::size_t freeSlot(double now) const;
  };
  struct Disconnect {
    void operator()(pw_core* core) const { pw_core_disconnect(core); }
  };

  Entry* make(const std::vector<SinkLayout>& sinks, std::uint32_t slots, double now);
  pw_core* coreWithRoom(std::size_t& index);

  const PipeWireLoop& loop_;
  pw_core* mainCore_;
  std::function<void()> onChange_;
  CorrectionScratch scratch_;
  /// Further connections: one connection does not carry more than 32 nodes with buffers safely.
  std::vector<std::unique_ptr<pw_core, Disconnect>> moreCores_;
  std::vector<Entry> entries_;
  double retryAt_ = 0;
};

}  // namespace plemora
