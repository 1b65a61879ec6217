#include <immintrin.h>

#include "audio/render/simd_loops.h"

namespace plemora {
namespace {

struct Avx2 {
  static constexpr std::size_t width = 8;
  __m256 value;

  static Avx2 load(const float* from) { return {_mm256_loadu_ps(from)}; }
  void store(float* to) const { _mm256_storeu_ps(to, value); }
  static Avx2 fill(float number) { return {_mm256_set1_ps(number)}; }
  static Avx2 add(Avx2 a, Avx2 b) { return {_mm256_add_ps(a.value, b.value)}; }
  static Avx2 subtract(Avx2 a, Avx2 b) { return {_mm256_sub_ps(a.value, b.value)}; }
  static Avx2 multiply(Avx2 a, Avx2 b) { return {_mm256_mul_ps(a.value, b.value)}; }
  static Avx2 magnitude(Avx2 x) { return {_mm256_andnot_ps(_mm256_set1_ps(-0.0f), x.value)}; }
  // The instruction gives its second operand when either is NaN.
  static Avx2 larger(Avx2 x, Avx2 seen) { return {_mm256_max_ps(x.value, seen.value)}; }
  static float largestElement(Avx2 x) {
    const __m128 four =
        _mm_max_ps(_mm256_castps256_ps128(x.value), _mm256_extractf128_ps(x.value, 1));
    const __m128 pair = _mm_max_ps(four, _mm_movehl_ps(four, four));
    return _mm_cvtss_f32(_mm_max_ss(pair, _mm_shuffle_ps(pair, pair, 1)));
  }
};

}  // namespace

constinit const RampKernel rampKernelAvx2 = SimdLoops<Avx2>::rampKernel("AVX2");
constinit const MixKernel mixKernelAvx2 = SimdLoops<Avx2>::mixKernel("AVX2");

}  // namespace plemora
