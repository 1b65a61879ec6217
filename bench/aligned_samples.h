#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace plemora {

/// Channels of samples, each on memory pages of its own and on a cache line, as a sound server lays
/// them out. Inputs and outputs begin at different places of their pages: a load that follows a
/// store a whole number of pages away waits for it, and that would be measured instead.
class AlignedSamples {
 public:
  enum class Use { input, output };

  AlignedSamples(Use use, std::size_t channels, std::size_t frames)
      : pitch_((frames + pageSamples - 1) / pageSamples * pageSamples),
        memory_(channels * pitch_ + 2 * pageSamples) {
    const auto address = reinterpret_cast<std::uintptr_t>(memory_.data());
    const std::size_t toPage = pageSamples - address / sizeof(float) % pageSamples;
    first_ = memory_.data() + toPage + (use == Use::output ? outputOffset : 0);
  }
  AlignedSamples(const AlignedSamples&) = delete;
  AlignedSamples& operator=(const AlignedSamples&) = delete;

  float* channel(std::size_t number) { return first_ + number * pitch_; }

 private:
  static constexpr std::size_t pageSamples = 4096 / sizeof(float);
  static constexpr std::size_t outputOffset = pageSamples / 2 + 16;

  std::size_t pitch_;
  std::vector<float> memory_;
  float* first_ = nullptr;
};

}  // namespace plemora
