#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <vector>

#include "adapters/linux/pipewire/correction_renderer.h"
#include "adapters/linux/pipewire/filter_pool.h"
#include "adapters/linux/pipewire/graph_mirror.h"

namespace plemora {

/// A direct link of a stream to its sink, as the session manager made it.
struct DirectLink {
  std::uint32_t id = 0;
  std::uint32_t port = 0;     ///< of the stream
  std::uint32_t channel = 0;  ///< of the sink
  bool wasActive = false;
};

/// The direct links of a stream to one sink.
std::vector<DirectLink> directLinks(const GraphMirror& mirror, std::uint32_t stream,
                                    std::uint32_t sink);

/// Node id of the sink that a stream was linked to last; 0 while it has none. One that is being
/// moved has, for a moment, links to two.
std::uint32_t homeOf(const GraphMirror& mirror, std::uint32_t stream);

/// One stream on one slot of a filter. With the loop's lock held.
class Placement {
 public:
  enum class Phase {
    linking,  ///< not heard yet
    live,     ///< fading in or there
    leaving,  ///< fading out or there
  };

  Placement(std::uint64_t correction, std::uint32_t stream, std::uint32_t home, FilterSlot slot);

  std::uint64_t correction() const { return correction_; }
  std::uint32_t stream() const { return stream_; }
  std::uint32_t home() const { return home_; }
  const FilterSlot& slot() const { return slot_; }
  Phase phase() const { return phase_; }
  CorrectionSlot* renderSlot() const { return renderSlot_.get(); }

  /// Makes the links that are missing, unless it is leaving, and follows what the direct links to
  /// its home carry.
  void follow(const std::vector<DirectLink>& direct, bool streamRuns);

  /// All is linked, so that it may go live. A stream that does not run needs no more than buffers
  /// to be agreed on: everything starts together with it.
  bool isReady(const std::vector<DirectLink>& direct, bool streamRuns) const;

  /// Fades in; with a stream that does not run it is there at once. Real-time safe.
  void goLive(bool streamRuns);
  /// Fades out. Real-time safe. now: media time in seconds.
  void leave(double now);

  /// Faded out, or nothing passes through it that could fade.
  bool hasFaded(bool streamRuns, double now) const;

  double lostSince = 0;  ///< media time at which the stream lost its direct links; 0 = has them

 private:
  struct InputLink {
    std::uint32_t port;
    std::uint32_t channel;
    std::unique_ptr<FilterLink> link;
  };

  std::uint64_t correction_;
  std::uint32_t stream_;
  std::uint32_t home_;
  FilterSlot slot_;
  Phase phase_ = Phase::linking;
  std::unique_ptr<CorrectionSlot> renderSlot_;
  std::vector<InputLink> links_;
  std::set<std::uint32_t> countedDirect_;  ///< ids of direct links that carry samples
  int attempts_ = 0;                       ///< links that the server has refused or removed
  double leftAt_ = 0;
  std::uint64_t cyclesWhenLeft_ = 0;
};

}  // namespace plemora
