#include <immintrin.h>

#include "glass/simd_pixels.h"

namespace plemora {

namespace {

struct Avx2 {
  using V = __m256i;
  using F = __m256;
  using Count = __m128i;
  static constexpr std::size_t bytes = sizeof(V);

  static V load(const void* p) { return _mm256_loadu_si256(static_cast<const V*>(p)); }
  static void store(void* p, V v) { _mm256_storeu_si256(static_cast<V*>(p), v); }
  static V zero() { return _mm256_setzero_si256(); }
  static V all16(std::int16_t x) { return _mm256_set1_epi16(x); }
  static V all32(std::int32_t x) { return _mm256_set1_epi32(x); }
  static V pairs16(std::int16_t even, std::int16_t odd) {
    return all32(static_cast<std::int32_t>(static_cast<std::uint32_t>(odd) << 16) |
                 static_cast<std::uint16_t>(even));
  }
  static Count count(int shift) { return _mm_cvtsi32_si128(shift); }

  static V unpackLow8(V a, V b) { return _mm256_unpacklo_epi8(a, b); }
  static V unpackHigh8(V a, V b) { return _mm256_unpackhi_epi8(a, b); }
  static V unpackLow16(V a, V b) { return _mm256_unpacklo_epi16(a, b); }
  static V unpackHigh16(V a, V b) { return _mm256_unpackhi_epi16(a, b); }
  static V pack16(V low, V high) { return _mm256_packs_epi32(low, high); }
  static V packUnsigned8(V low, V high) { return _mm256_packus_epi16(low, high); }
  static V alphaWords(V v) { return _mm256_shufflehi_epi16(_mm256_shufflelo_epi16(v, 0xff), 0xff); }
  static bool isZero(V v) { return _mm256_movemask_epi8(_mm256_cmpeq_epi8(v, zero())) == -1; }

  static V add16(V a, V b) { return _mm256_add_epi16(a, b); }
  static V subtract16(V a, V b) { return _mm256_sub_epi16(a, b); }
  static V multiplyLow16(V a, V b) { return _mm256_mullo_epi16(a, b); }
  static V multiplyPairs(V a, V b) { return _mm256_madd_epi16(a, b); }
  static V shiftRight16(V v) { return _mm256_srli_epi16(v, 8); }
  static V add32(V a, V b) { return _mm256_add_epi32(a, b); }
  static V shiftRight32(V v, Count count) { return _mm256_sra_epi32(v, count); }
  template <int count>
  static V shiftLeft32(V v) {
    return _mm256_slli_epi32(v, count);
  }
  static V addSaturated8(V a, V b) { return _mm256_adds_epu8(a, b); }
  static V either(V a, V b) { return _mm256_or_si256(a, b); }

  static F allF(float x) { return _mm256_set1_ps(x); }
  static F addF(F a, F b) { return _mm256_add_ps(a, b); }
  static F multiplyF(F a, F b) { return _mm256_mul_ps(a, b); }
  static F minF(F a, F b) { return _mm256_min_ps(a, b); }
  static F maxF(F a, F b) { return _mm256_max_ps(a, b); }
  /// The byte at that shift of each pixel.
  template <int shift>
  static F toFloat(V v) {
    return _mm256_cvtepi32_ps(_mm256_and_si256(_mm256_srli_epi32(v, shift), all32(0xff)));
  }
  static V rounded(F f) { return _mm256_cvtps_epi32(f); }
};

}  // namespace

const PixelKernel avx2PixelKernel = SimdPixels<Avx2>::kernel("avx2");

}  // namespace plemora
