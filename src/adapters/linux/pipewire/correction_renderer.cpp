#include "adapters/linux/pipewire/correction_renderer.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "audio/render/mix_kernel.h"

namespace plemora {

namespace {

constexpr std::uint32_t maxGroups = 8;

constexpr std::size_t cacheLine = 64;

/// Of each channel this much is fetched ahead; for what follows the processor sees the pattern.
constexpr std::size_t fetchedBytes = 4096;

/// Streams of one app whose samples are fetched ahead; those of many would push each other out.
constexpr std::size_t fetchedStreams = 3;

void fetch(const void* from, std::size_t bytes) {
  const auto* const first = static_cast<const char*>(from);
  for (std::size_t offset = 0; offset < bytes; offset += cacheLine) {
    __builtin_prefetch(first + offset);
  }
}

// The outputs of one cycle: the first writer of a channel stores, later ones add.
class Outputs {
 public:
  Outputs(const std::vector<std::uint32_t>& groupChannels, std::uint32_t frames,
          std::uint32_t offset, CorrectionPorts& ports)
      : frames_(frames) {
    groups_ = std::min<std::uint32_t>(static_cast<std::uint32_t>(groupChannels.size()), maxGroups);
    for (std::uint32_t group = 0; group < groups_; ++group) {
      channels_[group] = std::min(groupChannels[group], maxCorrectionChannels);
      for (std::uint32_t channel = 0; channel < channels_[group]; ++channel) {
        float* buffer = ports.output(group, channel);
        buffers_[group][channel] = buffer == nullptr ? nullptr : buffer + offset;
        written_[group][channel] = false;
      }
    }
  }

  std::uint32_t channels(std::uint32_t group) const {
    return group < groups_ ? channels_[group] : 0;
  }

  /// What is written into the group's channels is heard.
  bool reach(std::uint32_t group) {
    for (std::uint32_t channel = 0; channel < channels(group); ++channel) {
      if (buffers_[group][channel] == nullptr) {
        return false;
      }
    }
    return channels(group) > 0;
  }

  void add(std::uint32_t group, std::uint32_t channel, const float* samples) {
    float* out = at(group, channel);
    if (out == nullptr) {
      return;
    }
    if (written_[group][channel]) {
      mixAdd(out, samples, frames_);
    } else {
      std::memcpy(out, samples, frames_ * sizeof(float));
      written_[group][channel] = true;
    }
  }

  /// Adds a - b.
  void addDifference(std::uint32_t group, std::uint32_t channel, const float* a, const float* b) {
    float* out = at(group, channel);
    if (out == nullptr) {
      return;
    }
    if (written_[group][channel]) {
      mixAdd(out, a, frames_);
      mixSubtract(out, b, frames_);
    } else {
      subtractInto(out, a, b, frames_);
      written_[group][channel] = true;
    }
  }

  void subtract(std::uint32_t group, std::uint32_t channel, const float* samples, float from,
                float to) {
    float* out = at(group, channel);
    if (out == nullptr) {
      return;
    }
    if (!written_[group][channel]) {
      clear(out, frames_);
      written_[group][channel] = true;
    }
    if (from == 1.0f && to == 1.0f) {
      mixSubtract(out, samples, frames_);
    } else {
      addRamped(out, samples, frames_, -from, -to);
    }
  }

  void clearUnwritten() {
    for (std::uint32_t group = 0; group < groups_; ++group) {
      for (std::uint32_t channel = 0; channel < channels_[group]; ++channel) {
        if (!written_[group][channel] && buffers_[group][channel] != nullptr) {
          clear(buffers_[group][channel], frames_);
        }
      }
    }
  }

 private:
  float* at(std::uint32_t group, std::uint32_t channel) {
    return group < groups_ && channel < channels_[group] ? buffers_[group][channel] : nullptr;
  }

  std::uint32_t frames_;
  std::uint32_t groups_ = 0;
  std::array<std::uint32_t, maxGroups> channels_{};
  std::array<std::array<float*, maxCorrectionChannels>, maxGroups> buffers_;
  std::array<std::array<bool, maxCorrectionChannels>, maxGroups> written_;
};

// A slot's part in this cycle.
struct Share {
  const CorrectionSlot* slot;
  float from;
  float to;
  bool isHeardElsewhere;  ///< only the direct path is to be taken away
};

// Streams of a tap that are all there and play to the same channels of the same sink.
struct Alike {
  const CorrectionSlot* slot = nullptr;  ///< one of them; null: they differ
  std::uint32_t direct = 0;              ///< channels that they reach by themselves
};

class TapCycle {
 public:
  TapCycle(std::uint64_t cycle, std::uint32_t frames, std::uint32_t offset, CorrectionPorts& ports,
           CorrectionScratch& scratch, Outputs& outputs)
      : cycle_(cycle),
        frames_(frames),
        offset_(offset),
        ports_(ports),
        scratch_(scratch),
        outputs_(outputs) {}

  /// Between two cycles other programs have the caches: all of a tap has to come from afar again,
  /// and its samples from the core of the app. It is on its way while the taps before are rendered.
  static void fetchSlots(const CorrectionTap& tap) {
    fetch(tap.block, sizeof(*tap.block));
    for (const CorrectionSlot* slot : tap.slots) {
      fetch(slot, sizeof(*slot));
    }
  }
  void fetchSamples(const CorrectionTap& tap) {
    for (std::size_t i = 0; i < std::min(tap.slots.size(), fetchedStreams); ++i) {
      fetchSamples(*tap.slots[i]);
    }
  }

  void render(const CorrectionTap& tap) {
    collectInput(tap);
    if (channels_ == 0) {
      return;
    }
    const std::uint32_t outChannels = outputs_.channels(tap.group);
    const std::uint32_t bytes = frames_ * static_cast<std::uint32_t>(sizeof(float));
    for (std::uint32_t c = 0; c < channels_; ++c) {
      // The buffers of an input list are read only, the type of the list cannot say so.
      inList_[c] = {1, bytes, const_cast<float*>(input_[c])};
    }
    for (std::uint32_t c = 0; c < outChannels; ++c) {
      outList_[c] = {1, bytes, scratch_.output(c)};
    }
    (*tap.block)({inList_.data(), channels_}, {outList_.data(), outChannels});
    addOutput(tap, outChannels);
  }

 private:
  void fetchSamples(const CorrectionSlot& slot) {
    const std::size_t bytes = std::min(frames_ * sizeof(float), fetchedBytes);
    for (std::uint32_t c = 0; c < std::min(slot.channels, maxCorrectionChannels); ++c) {
      if (const float* samples = portInput(slot, c)) {
        fetch(samples, bytes);
      }
    }
  }

  const float* portInput(const CorrectionSlot& slot, std::uint32_t channel) {
    const float* samples = ports_.input(slot.port + channel);
    return samples == nullptr ? nullptr : samples + offset_;
  }

  // Notes which inputs deliver, also of slots that are still waiting to be heard. False while
  // there is one that never has.
  bool isFed(CorrectionSlot& slot) {
    const std::uint32_t linked = slot.linkedChannels.load(std::memory_order_relaxed);
    std::uint32_t now = 0;
    for (std::uint32_t c = 0; c < std::min(slot.channels, maxCorrectionChannels); ++c) {
      now |= portInput(slot, c) != nullptr ? 1u << c : 0u;
    }
    std::uint32_t seen = slot.seenChannels.load(std::memory_order_relaxed);
    if ((now & ~seen) != 0) {
      seen |= slot.seenChannels.fetch_or(now, std::memory_order_relaxed) | now;
    }
    const std::uint32_t silent = slot.silentCycles.load(std::memory_order_relaxed);
    const std::uint32_t counted = (linked & ~now) != 0 ? silent + 1 : 0;
    if (counted != silent) {
      slot.silentCycles.store(counted, std::memory_order_relaxed);
    }
    return linked != 0 && (linked & ~seen) == 0;
  }

  // The weight goes to 1, and that of the slot which had the stream until now to 0.
  void start(CorrectionSlot& slot) const {
    slot.startsWhenFed.store(false, std::memory_order_relaxed);
    slot.weight.store(1.0f, std::memory_order_relaxed);
    slot.targetWeight.store(1.0f, std::memory_order_relaxed);
    if (auto* predecessor = slot.predecessor.exchange(nullptr, std::memory_order_relaxed)) {
      predecessor->weight.store(0.0f, std::memory_order_relaxed);
      predecessor->targetWeight.store(0.0f, std::memory_order_relaxed);
      // Its filter may have run before this one in this cycle.
      slot.passedIn = predecessor->renderedIn == cycle_ ? cycle_ : 0;
    }
  }

  // Moves a slot's weight on and says what part it takes in this cycle.
  Share advance(CorrectionSlot& slot) const {
    if (slot.passedIn == cycle_ && slot.isLikePredecessor.load(std::memory_order_relaxed)) {
      return {&slot, 0.0f, 0.0f, true};
    }
    const float from = slot.weight.load(std::memory_order_relaxed);
    const float to = slot.targetWeight.load(std::memory_order_relaxed);
    if (from != to) {
      slot.weight.store(to, std::memory_order_relaxed);
    }
    return {&slot, from, to, slot.passedIn == cycle_};
  }

  // The streams that take part, when what they play by themselves is just the sum of the input.
  Alike findAlike() const {
    if (shares_ == 0) {
      return {};
    }
    const CorrectionSlot& first = *share_[0].slot;
    const Alike alike{&first, first.directChannels.load(std::memory_order_relaxed)};
    const bool isAlike =
        std::all_of(share_.begin(), share_.begin() + shares_, [&](const Share& share) {
          return share.from == 1.0f && share.to == 1.0f && !share.isHeardElsewhere &&
                 share.slot->group == first.group && share.slot->channels == first.channels &&
                 share.slot->directChannels.load(std::memory_order_relaxed) == alike.direct;
        });
    return isAlike ? alike : Alike{};
  }

  void collectInput(const CorrectionTap& tap) {
    channels_ = 0;
    shares_ = 0;
    // A stream beyond the limit of a cycle keeps its direct path.
    for (CorrectionSlot* slot : tap.slots) {
      if (shares_ == share_.size()) {
        break;
      }
      if (!isFed(*slot)) {
        continue;
      }
      if (slot->startsWhenFed.load(std::memory_order_relaxed)) {
        // A filter that has just been made may have its inputs before its outputs.
        if (!outputs_.reach(tap.group) || !outputs_.reach(slot->group)) {
          continue;
        }
        start(*slot);
      }
      const Share share = advance(*slot);
      if (share.from != 0.0f || share.to != 0.0f) {
        slot->renderedIn = cycle_;
        share_[shares_++] = share;
        channels_ = std::max(channels_, std::min(slot->channels, maxCorrectionChannels));
      }
    }
    alike_ = findAlike();
    if (shares_ == 1 && alike_.slot != nullptr) {
      for (std::uint32_t c = 0; c < channels_; ++c) {
        const float* samples = portInput(*alike_.slot, c);
        input_[c] = samples == nullptr ? scratch_.silence() : samples;
      }
      return;
    }
    for (std::uint32_t c = 0; c < channels_; ++c) {
      clear(scratch_.input(c), frames_);
      input_[c] = scratch_.input(c);
    }
    for (std::size_t i = 0; i < shares_; ++i) {
      const Share& share = share_[i];
      if (i + fetchedStreams < shares_) {
        fetchSamples(*share_[i + fetchedStreams].slot);
      }
      if (share.isHeardElsewhere) {
        continue;
      }
      for (std::uint32_t c = 0; c < std::min(share.slot->channels, channels_); ++c) {
        if (const float* samples = portInput(*share.slot, c)) {
          addRamped(scratch_.input(c), samples, frames_, share.from, share.to);
        }
      }
    }
  }

  void addOutput(const CorrectionTap& tap, std::uint32_t outChannels) {
    // The usual case in one pass, so that silencing a stream is exact beside any other.
    if (alike_.slot != nullptr && alike_.slot->group == tap.group && outChannels == channels_) {
      for (std::uint32_t c = 0; c < channels_; ++c) {
        if ((alike_.direct >> c & 1u) != 0) {
          outputs_.addDifference(tap.group, c, scratch_.output(c), input_[c]);
        } else {
          outputs_.add(tap.group, c, scratch_.output(c));
        }
      }
      return;
    }
    for (std::uint32_t c = 0; c < outChannels; ++c) {
      outputs_.add(tap.group, c, scratch_.output(c));
    }
    for (std::size_t i = 0; i < shares_; ++i) {
      const Share& share = share_[i];
      const auto direct = share.slot->directChannels.load(std::memory_order_relaxed);
      for (std::uint32_t c = 0; c < std::min(share.slot->channels, channels_); ++c) {
        const float* samples = (direct >> c & 1u) != 0 ? portInput(*share.slot, c) : nullptr;
        if (samples != nullptr) {
          outputs_.subtract(share.slot->group, c, samples, share.from, share.to);
        }
      }
    }
  }

  std::uint64_t cycle_;
  std::uint32_t frames_;
  std::uint32_t offset_;
  CorrectionPorts& ports_;
  CorrectionScratch& scratch_;
  Outputs& outputs_;

  std::uint32_t channels_ = 0;
  Alike alike_;
  std::array<const float*, maxCorrectionChannels> input_{};
  std::array<AudioBuffer, maxCorrectionChannels> inList_;
  std::array<AudioBuffer, maxCorrectionChannels> outList_;
  std::array<Share, 256> share_;
  std::size_t shares_ = 0;
};

}  // namespace

CorrectionScratch::CorrectionScratch() : silence_(maxFrames, 0.0f) {
  constexpr std::size_t count = std::size_t{2} * maxCorrectionChannels * stride;
  std::size_t room = count * sizeof(float) + cacheLine;
  samples_ = std::make_unique_for_overwrite<float[]>(room / sizeof(float));
  void* start = samples_.get();
  first_ = static_cast<float*>(std::align(cacheLine, count * sizeof(float), start, room));
}

void renderCorrections(const CorrectionPlan& plan, const std::vector<std::uint32_t>& groupChannels,
                       std::uint64_t cycle, std::uint32_t frames, CorrectionPorts& ports,
                       CorrectionScratch& scratch) {
  for (std::uint32_t offset = 0; offset < frames; offset += CorrectionScratch::maxFrames) {
    const std::uint32_t piece = std::min(frames - offset, CorrectionScratch::maxFrames);
    Outputs outputs(groupChannels, piece, offset, ports);
    TapCycle taps(cycle, piece, offset, ports, scratch, outputs);
    for (std::size_t i = 0; i < plan.size(); ++i) {
      if (i + 3 < plan.size()) {
        fetch(plan[i + 3].slots.data(), cacheLine);
      }
      if (i + 2 < plan.size()) {
        TapCycle::fetchSlots(plan[i + 2]);
      }
      if (i + 1 < plan.size()) {
        taps.fetchSamples(plan[i + 1]);
      }
      taps.render(plan[i]);
    }
    outputs.clearUnwritten();
  }
}

}  // namespace plemora
