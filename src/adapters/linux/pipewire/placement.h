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
  double since = 0;  ///< media time of its appearance
};

/// The direct links of a stream to one sink.
std::vector<DirectLink> directLinks(const GraphMirror& mirror, std::uint32_t stream,
                                    std::uint32_t sink);

/// The links that a session manager will make between the two: each channel to its namesake. Their
/// ids are 0.
std::vector<DirectLink> expectedLinks(const GraphMirror& mirror, std::uint32_t stream,
                                      std::uint32_t sink);

/// Node id of the sink that a stream was linked to last; 0 while it has none. One that is being
/// moved has, for a moment, links to two.
std::uint32_t homeOf(const GraphMirror& mirror, std::uint32_t stream);

/// One stream on one slot of a filter. With the loop's lock held.
class Placement {
 public:
  enum class Phase {
    linking,  ///< not heard: links are being made, or wait for the direct ones to carry samples
    live,     ///< fading in or there
    leaving,  ///< fading out or there
  };

  Placement(std::uint64_t correction, std::uint32_t stream, std::uint64_t serial,
            std::uint32_t home, FilterSlot slot);

  std::uint64_t correction() const { return correction_; }
  void setCorrection(std::uint64_t correction) { correction_ = correction; }
  std::uint32_t stream() const { return stream_; }
  std::uint64_t serial() const { return serial_; }  ///< of the stream
  std::uint32_t home() const { return home_; }
  const FilterSlot& slot() const { return slot_; }
  Phase phase() const { return phase_; }
  CorrectionSlot* renderSlot() const { return renderSlot_.get(); }

  /// Follows the direct links to its home. While it is linking or live it makes the links that are
  /// missing to the wanted ones, which are the direct ones or those to be expected, and makes those
  /// anew through which nothing comes.
  void follow(const std::vector<DirectLink>& wanted, const std::vector<DirectLink>& direct,
              bool streamRuns, double now);

  /// All is linked, so that it may go live: it starts with the first sample that comes through. One
  /// that takes over from another must have heard samples on every channel.
  bool isReady(bool streamRuns, bool takesOver) const;
  /// The stream's direct links are there and carry samples, or will from their start on.
  bool isDirect() const { return isDirect_; }
  /// Seconds until follow is due again for a link that has yet to deliver; 0 for never.
  double nextLook(bool streamRuns) const;

  /// Nothing of the stream can have been heard since this placement was made: it does not run, or
  /// no cycle has passed since it began to.
  bool isBeforeFirstSample(bool streamRuns) const;

  /// It was ready while the direct path was not: from the first sample on, nothing is to be faded.
  bool wasAhead = false;

  /// Fades in, or is there at once. Real-time safe.
  void goLive(bool atOnce);
  /// From the first cycle on that comes through, it is there at once, without another word, and the
  /// one that has had the stream until then is not.
  void startWhenFed(const Placement& predecessor);
  /// What the predecessor adds is, bit for bit, what this one would add in its place: the same
  /// correction, on another filter for the same sinks.
  bool isLike(const Placement& predecessor) const;
  /// The predecessor is about to be freed.
  void forget(const Placement& predecessor);
  /// That cycle has come.
  bool hasStarted() const {
    return isArmed_ && !renderSlot_->startsWhenFed.load(std::memory_order_relaxed);
  }
  /// Fades out, or is gone at once. Real-time safe. now: media time in seconds.
  void leave(double now, bool atOnce = false);

  /// Faded out, or nothing passes through it that could fade.
  bool hasFaded(bool streamRuns, double now) const;

  double lostSince = 0;  ///< media time at which the stream lost its direct links; 0 = has them

 private:
  struct InputLink {
    std::uint32_t port;
    std::uint32_t channel;
    std::unique_ptr<FilterLink> link;
    double madeAt = 0;                ///< media time
    double activeSince = 0;           ///< media time; 0 = nothing can come yet
    std::uint64_t cyclesAtStart = 0;  ///< of the filter, then
  };

  bool hasHeard(const InputLink& input) const;
  bool isDeaf(InputLink& input, double now);
  double backoff() const;

  std::uint64_t correction_;
  std::uint32_t stream_;
  std::uint64_t serial_;
  std::uint32_t home_;
  FilterSlot slot_;
  Phase phase_ = Phase::linking;
  std::unique_ptr<CorrectionSlot> renderSlot_;
  std::vector<InputLink> links_;
  std::size_t wanted_ = 0;  ///< number of links that there should be
  bool isDirect_ = false;
  bool awaitsDirect_ = false;  ///< the direct links are there and have not been said to be on
  std::set<std::uint32_t> countedDirect_;  ///< ids of direct links that carry samples
  bool sawRest_ = false;                   ///< the stream did not run at first
  bool sawStart_ = false;                  ///< and then began to
  std::uint64_t cyclesAtStart_ = 0;        ///< of the filter, then
  bool isArmed_ = false;                   ///< startWhenFed was called
  int failures_ = 0;                       ///< of links since the last time that all was well
  double retryAt_ = 0;                     ///< media time before which no link is made anew
  double leftAt_ = 0;
  std::uint64_t cyclesWhenLeft_ = 0;
};

}  // namespace plemora
