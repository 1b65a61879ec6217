#pragma once

#include <cstddef>
#include <span>

namespace plemora {

/// Sums and fades of mono buffers of n contiguous samples, for one instruction set. Any alignment;
/// a source may be the destination itself, no other overlap. Each sample is rounded after every
/// single operation, so mixAdd, mixSubtract and subtractInto agree bit for bit in all variants; so
/// do the ramped ones while w0 equals w1, else they stay within n * 2^-23 * (largest weight) * |x|
/// of the scalar one, plus one rounding of the sum. Real-time safe.
struct MixKernel {
  const char* name;
  void (*mixAdd)(float* dst, const float* src, std::size_t n);
  void (*mixSubtract)(float* dst, const float* src, std::size_t n);
  void (*subtractInto)(float* dst, const float* a, const float* b, std::size_t n);
  void (*addRamped)(float* dst, const float* src, std::size_t n, float w0, float w1);
  void (*scaleRamped)(float* dst, const float* src, std::size_t n, float w0, float w1);
};

/// The variants that this processor can run, the scalar reference first, the fastest last.
std::span<const MixKernel* const> availableMixKernels();

/// The fastest one, chosen before main.
const MixKernel& mixKernel();

/// dst += src
inline void mixAdd(float* dst, const float* src, std::size_t n) {
  mixKernel().mixAdd(dst, src, n);
}

/// dst -= src
inline void mixSubtract(float* dst, const float* src, std::size_t n) {
  mixKernel().mixSubtract(dst, src, n);
}

/// dst = a - b. Where a and b are equal numbers the result is exactly 0.
inline void subtractInto(float* dst, const float* a, const float* b, std::size_t n) {
  mixKernel().subtractInto(dst, a, b, n);
}

/// dst += w * src, where w starts at w0 and grows by (w1 - w0) / n after every sample: the next
/// buffer goes on at w1.
inline void addRamped(float* dst, const float* src, std::size_t n, float w0, float w1) {
  mixKernel().addRamped(dst, src, n, w0, w1);
}

/// dst = w * src, w as in addRamped.
inline void scaleRamped(float* dst, const float* src, std::size_t n, float w0, float w1) {
  mixKernel().scaleRamped(dst, src, n, w0, w1);
}

/// dst = 0
void clear(float* dst, std::size_t n);

}  // namespace plemora
