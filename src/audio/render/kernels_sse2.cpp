#include <emmintrin.h>

#include "audio/render/simd_loops.h"

namespace plemora {
namespace {

struct Sse2 {
  static constexpr std::size_t width = 4;
  __m128 value;

  static Sse2 load(const float* from) { return {_mm_loadu_ps(from)}; }
  void store(float* to) const { _mm_storeu_ps(to, value); }
  static Sse2 fill(float number) { return {_mm_set1_ps(number)}; }
  static Sse2 add(Sse2 a, Sse2 b) { return {_mm_add_ps(a.value, b.value)}; }
  static Sse2 subtract(Sse2 a, Sse2 b) { return {_mm_sub_ps(a.value, b.value)}; }
  static Sse2 multiply(Sse2 a, Sse2 b) { return {_mm_mul_ps(a.value, b.value)}; }
  static Sse2 magnitude(Sse2 x) { return {_mm_andnot_ps(_mm_set1_ps(-0.0f), x.value)}; }
  // The instruction gives its second operand when either is NaN.
  static Sse2 larger(Sse2 x, Sse2 seen) { return {_mm_max_ps(x.value, seen.value)}; }
  static float largestElement(Sse2 x) {
    const __m128 pair = _mm_max_ps(x.value, _mm_movehl_ps(x.value, x.value));
    return _mm_cvtss_f32(_mm_max_ss(pair, _mm_shuffle_ps(pair, pair, 1)));
  }
};

}  // namespace

constinit const RampKernel rampKernelSse2 = SimdLoops<Sse2>::rampKernel("SSE2");
constinit const MixKernel mixKernelSse2 = SimdLoops<Sse2>::mixKernel("SSE2");

}  // namespace plemora
