#pragma once

#include "glass/pixel_kernel_variants.h"

// The loops of the vectorised kernels, written once over an instruction set S that each
// pixel_kernels_<instruction set>.cpp defines in its unnamed namespace: the integer vector V and
// the float vector F, `bytes` in a V, and the operations used below, named after what they do.
// Unpacking and packing may work on halves of a vector each, as long as packing undoes unpacking.
//
// S being local to its file makes every instance local too: no function compiled for a newer
// processor can be picked by the linker for code that runs on an older one. For the same reason
// nothing here calls inline functions of the standard library.

namespace plemora {

template <typename S>
struct SimdPixels {
  using V = typename S::V;
  using F = typename S::F;
  static constexpr std::size_t pixels = S::bytes / sizeof(Pixel);

  /// The bytes of a vector as words.
  struct Words {
    V low;
    V high;
  };

  static Words widened(V v) { return {S::unpackLow8(v, S::zero()), S::unpackHigh8(v, S::zero())}; }

  /// (x * y + 128) / 255, rounded, of words that hold bytes.
  static V multiply255(V x, V y) {
    const V product = S::add16(S::multiplyLow16(x, y), S::all16(128));
    return S::shiftRight16(S::add16(product, S::shiftRight16(product)));
  }

  static V scaled(V v, Words factor) {
    const Words words = widened(v);
    return S::packUnsigned8(multiply255(words.low, factor.low),
                            multiply255(words.high, factor.high));
  }

  static Words inverse(Words alpha) {
    const V full = S::all16(255);
    return {S::subtract16(full, alpha.low), S::subtract16(full, alpha.high)};
  }

  /// Each pixel's alpha in all four of its words.
  static Words alphas(V v) {
    const Words words = widened(v);
    return {S::alphaWords(words.low), S::alphaWords(words.high)};
  }

  /// The words of one half, fully weighed sum and edges, to bytes in words.
  struct Weights {
    V weights;
    V bias;
    typename S::Count shift;

    V mean(V sum, V edges) const {
      const V low = S::multiplyPairs(S::unpackLow16(sum, edges), weights);
      const V high = S::multiplyPairs(S::unpackHigh16(sum, edges), weights);
      return S::pack16(S::shiftRight32(S::add32(low, bias), shift),
                       S::shiftRight32(S::add32(high, bias), shift));
    }
  };

  /// One vector's width of the strip. A leaf of its own: inlined twice it costs registers and time.
  [[gnu::noinline]] static void boxColumn(std::uint8_t* dst, const std::uint8_t* src, int rows,
                                          const BoxFilter& filter) {
    constexpr std::ptrdiff_t stride = PixelKernel::stripWidth * sizeof(Pixel);
    const int radius = filter.radius;
    const int last = rows - 1;
    const auto at = [&](int row) {
      return widened(S::load(src + (row < 0 ? 0 : row > last ? last : row) * stride));
    };
    const Weights weights{S::pairs16(filter.inner, filter.outer), S::all32(filter.bias),
                          S::count(filter.shift)};
    // Sums are kept modulo 2^16; less 128 a pixel they fit.
    const Words first = at(0);
    const V start = S::all16(static_cast<std::int16_t>(-128 * (2 * radius + 1)));
    Words sum = {start, start};
    for (int row = -radius; row <= radius; ++row) {
      const Words words = row <= 0 ? first : at(row);
      sum = {S::add16(sum.low, words.low), S::add16(sum.high, words.high)};
    }
    const V center = S::all16(256);
    Words left = first;
    for (int row = 0; row < rows; ++row) {
      const Words right = at(row + radius + 1);
      const V edgesLow = S::subtract16(S::add16(left.low, right.low), center);
      const V edgesHigh = S::subtract16(S::add16(left.high, right.high), center);
      S::store(dst + row * stride, S::packUnsigned8(weights.mean(sum.low, edgesLow),
                                                    weights.mean(sum.high, edgesHigh)));
      left = at(row - radius);
      sum = {S::subtract16(S::add16(sum.low, right.low), left.low),
             S::subtract16(S::add16(sum.high, right.high), left.high)};
    }
  }

  static void boxRows(Pixel* dst, const Pixel* src, int rows, const BoxFilter& filter) {
    for (std::size_t column = 0; column < PixelKernel::stripWidth; column += pixels) {
      boxColumn(reinterpret_cast<std::uint8_t*>(dst + column),
                reinterpret_cast<const std::uint8_t*>(src + column), rows, filter);
    }
  }

  static F channel(const float* row, F red, F green, F blue) {
    const F sum =
        S::addF(S::addF(S::multiplyF(S::allF(row[0]), red), S::multiplyF(S::allF(row[1]), green)),
                S::addF(S::multiplyF(S::allF(row[2]), blue), S::allF(row[3])));
    return S::minF(S::maxF(sum, S::allF(0)), S::allF(255));
  }

  static void transform(Pixel* dst, const Pixel* src, std::size_t n, const PixelTransform& t) {
    std::size_t i = 0;
    const F share = S::allF(t.keep / 255.0f);
    for (; i + pixels <= n; i += pixels) {
      const V source = S::load(src + i);
      const F red = S::template toFloat<16>(source);
      const F green = S::template toFloat<8>(source);
      const F blue = S::template toFloat<0>(source);
      const F alpha = channel(t.alpha, red, green, blue);
      const F keep = S::multiplyF(alpha, share);
      const auto level = [&](const float* row, float wash) {
        return S::rounded(
            S::addF(S::multiplyF(channel(row, red, green, blue), keep), S::allF(wash)));
      };
      const V resultAlpha =
          S::rounded(S::addF(S::multiplyF(alpha, S::allF(t.keep)), S::allF(t.wash[3])));
      const V high = S::either(S::template shiftLeft32<24>(resultAlpha),
                               S::template shiftLeft32<16>(level(t.red, t.wash[0])));
      const V low = S::either(S::template shiftLeft32<8>(level(t.green, t.wash[1])),
                              level(t.blue, t.wash[2]));
      S::store(dst + i, S::either(high, low));
    }
    scalarPixelKernel.transform(dst + i, src + i, n - i, t);
  }

  static void over(Pixel* dst, const Pixel* src, std::size_t n) {
    std::size_t i = 0;
    for (; i + pixels <= n; i += pixels) {
      const V source = S::load(src + i);
      if (!S::isZero(source)) {
        S::store(dst + i,
                 S::addSaturated8(source, scaled(S::load(dst + i), inverse(alphas(source)))));
      }
    }
    scalarPixelKernel.over(dst + i, src + i, n - i);
  }

  static void scale(Pixel* dst, std::uint8_t factor, std::size_t n) {
    std::size_t i = 0;
    const V words = S::all16(factor);
    for (; i + pixels <= n; i += pixels) {
      S::store(dst + i, scaled(S::load(dst + i), {words, words}));
    }
    scalarPixelKernel.scale(dst + i, factor, n - i);
  }

  static void multiply(Pixel* dst, const Pixel* mask, std::size_t n) {
    std::size_t i = 0;
    for (; i + pixels <= n; i += pixels) {
      S::store(dst + i, scaled(S::load(dst + i), alphas(S::load(mask + i))));
    }
    scalarPixelKernel.multiply(dst + i, mask + i, n - i);
  }

  static constexpr PixelKernel kernel(const char* name) {
    return {.name = name,
            .boxRows = boxRows,
            .transform = transform,
            .over = over,
            .scale = scale,
            .multiply = multiply};
  }
};

}  // namespace plemora
