#include <arm_neon.h>

#include "audio/render/simd_loops.h"

namespace plemora {
namespace {

struct Neon {
  static constexpr std::size_t width = 4;
  float32x4_t value;

  static Neon load(const float* from) { return {vld1q_f32(from)}; }
  void store(float* to) const { vst1q_f32(to, value); }
  static Neon fill(float number) { return {vdupq_n_f32(number)}; }
  static Neon add(Neon a, Neon b) { return {vaddq_f32(a.value, b.value)}; }
  static Neon subtract(Neon a, Neon b) { return {vsubq_f32(a.value, b.value)}; }
  static Neon multiply(Neon a, Neon b) { return {vmulq_f32(a.value, b.value)}; }
  static Neon magnitude(Neon x) { return {vabsq_f32(x.value)}; }
  // Both maximum instructions can return NaN; the comparison is false for it.
  static Neon larger(Neon x, Neon seen) {
    return {vbslq_f32(vcgtq_f32(x.value, seen.value), x.value, seen.value)};
  }
  static float largestElement(Neon x) { return vmaxvq_f32(x.value); }
};

}  // namespace

constinit const RampKernel rampKernelNeon = SimdLoops<Neon>::rampKernel("NEON");
constinit const MixKernel mixKernelNeon = SimdLoops<Neon>::mixKernel("NEON");

}  // namespace plemora
