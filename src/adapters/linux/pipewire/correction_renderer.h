#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/audio_graph.h"

namespace plemora {

/// Channels of one sink that a correction can serve; further ones stay as they are.
inline constexpr std::uint32_t maxCorrectionChannels = 32;

/// One stream of a tap as the real-time thread sees it. Made and freed off that thread, while no
/// installed plan names it.
struct CorrectionSlot {
  std::uint32_t port = 0;   ///< first of this slot's inputs, see CorrectionPorts
  std::uint32_t group = 0;  ///< sink that the stream plays to by itself
  std::uint32_t channels = 0;

  /// Share of the correction that is wanted: 0 or 1. Set by the event thread.
  std::atomic<float> targetWeight = 0.0f;
  /// Share reached at the end of the last cycle; goes to the target across one buffer. Set by the
  /// event thread before the slot is installed, then by the real-time thread.
  std::atomic<float> weight = 0.0f;
  /// The weight goes to 1 at once in the first cycle in which the slot takes part. Set by the event
  /// thread, cleared by the real-time thread when that has come.
  std::atomic<bool> startsWhenFed = false;
  /// Slot of another filter that had the stream until then: it ends in the cycle in which this one
  /// starts, so that every sample is heard once. Set by the event thread, which takes it back
  /// before it frees that slot; cleared by the real-time thread once it has been used.
  std::atomic<CorrectionSlot*> predecessor = nullptr;
  /// The predecessor adds just what this one will: in a cycle in which it has been heard, nothing
  /// is left to do, not even to take away the direct path. Set by the event thread before
  /// startsWhenFed.
  std::atomic<bool> isLikePredecessor = false;
  /// Bit per channel: a link feeds it. Set by the event thread.
  std::atomic<std::uint32_t> linkedChannels = 0;
  /// Bit per channel: samples have arrived since the event thread cleared it, at whatever weight.
  /// A slot takes part from the cycle on in which all linked channels have been seen.
  std::atomic<std::uint32_t> seenChannels = 0;
  /// Cycles in a row in which a linked channel that had delivered did not. Counted by the real-time
  /// thread, cleared by the event thread.
  std::atomic<std::uint32_t> silentCycles = 0;
  /// Bit per channel: the stream's direct link to the sink carries samples. Set by the event
  /// thread.
  std::atomic<std::uint32_t> directChannels = 0;

  // Of the real-time thread alone.
  std::uint64_t renderedIn = 0;  ///< the last cycle that it took part in
  std::uint64_t passedIn = 0;    ///< the cycle in which its predecessor had already been heard
};

/// One tap: its streams, its IO block, and the sink that it is heard on.
struct CorrectionTap {
  const AudioIOBlock* block = nullptr;
  std::uint32_t group = 0;
  std::vector<CorrectionSlot*> slots;
};

/// What the real-time thread works on; replaced as a whole between two cycles.
using CorrectionPlan = std::vector<CorrectionTap>;

/// This cycle's buffers of a filter's ports. Null: the port is not linked.
class CorrectionPorts {
 public:
  virtual ~CorrectionPorts() = default;
  virtual const float* input(std::uint32_t port) = 0;
  virtual float* output(std::uint32_t group, std::uint32_t channel) = 0;
};

/// Buffers that all filters of one real-time thread share. Memory is touched only as far as cycles
/// are long.
class CorrectionScratch {
 public:
  /// Frames that are rendered at once; a longer cycle is cut into pieces.
  static constexpr std::uint32_t maxFrames = 8192;

  CorrectionScratch();
  float* input(std::uint32_t channel) { return first_ + std::size_t{channel} * stride; }
  float* output(std::uint32_t channel) { return input(maxCorrectionChannels + channel); }
  const float* silence() const { return silence_.data(); }

 private:
  /// Whole cache lines, and no whole pages: copies between buffers at the same place of a page are
  /// several times slower.
  static constexpr std::size_t stride = maxFrames + 272;

  std::unique_ptr<float[]> samples_;
  float* first_;  ///< in samples_, on a cache line
  std::vector<float> silence_;
};

/// Renders one cycle: into the sinks' outputs goes w * (f(x) - d * x) summed over all streams,
/// where f is the tap's IO block, w the slot's weight, and d 1 where the direct link carries
/// samples. Together with the direct path the sink hears f(x). groupChannels holds the number of
/// outputs of each group; cycle, never 0, is another one in each cycle and the same for all filters
/// in one. Real-time thread: neither allocates nor locks.
void renderCorrections(const CorrectionPlan& plan, const std::vector<std::uint32_t>& groupChannels,
                       std::uint64_t cycle, std::uint32_t frames, CorrectionPorts& ports,
                       CorrectionScratch& scratch);

}  // namespace plemora
