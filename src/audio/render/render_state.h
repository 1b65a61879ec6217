#pragma once

#include <atomic>
#include <cstdint>

namespace plemora {

/// What one tap's render routine shares with its owner. One real-time thread renders; the owner's
/// threads set the gain and read the levels. Every access is relaxed and lock-free: each field
/// stands alone, and a value that arrives one buffer late is as good. Made before rendering starts
/// and kept until it has ended; not copyable.
struct RenderState {
  explicit RenderState(float gain = 1.0f) : targetGain(gain), currentGain(gain) {}
  RenderState(const RenderState&) = delete;
  RenderState& operator=(const RenderState&) = delete;

  /// Linear gain to reach by the end of the next buffer, not below 0. Written by the owner at any
  /// time, read by the render thread.
  std::atomic<float> targetGain;

  /// Linear gain at the start of the next buffer. Written by the owner before rendering starts,
  /// afterwards by the render thread alone.
  std::atomic<float> currentGain;

  /// Number of leading input buffers that belong to sub-devices and hold no tap audio; below 0
  /// counts as 0. Written by the owner before rendering starts.
  std::int64_t skipInputBuffers = 0;

  /// Largest absolute output sample (after the gain) since the last reset. Raised by the render
  /// thread with raisePeak, read and reset by the owner with takePeak. Never NaN.
  std::atomic<float> peak = 0.0f;

  /// Largest absolute input sample (before the gain) since the last reset. As peak.
  std::atomic<float> inputPeak = 0.0f;

  static_assert(std::atomic<float>::is_always_lock_free);
};

/// Raises a peak to the level unless it is there already. Render thread. The comparison and the
/// store are one step, so that a reset in between is neither lost nor undone by an older peak.
inline void raisePeak(std::atomic<float>& peak, float level) noexcept {
  float seen = peak.load(std::memory_order_relaxed);
  while (level > seen && !peak.compare_exchange_weak(seen, level, std::memory_order_relaxed)) {
  }
}

/// The peak since the last call, and resets it to 0. One reader at a time gets each peak.
inline float takePeak(std::atomic<float>& peak) noexcept {
  return peak.exchange(0.0f, std::memory_order_relaxed);
}

}  // namespace plemora
