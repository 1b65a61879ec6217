#include "audio/render/kernel_variants.h"

namespace plemora {
namespace {

void mixAddScalar(float* dst, const float* src, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) {
    dst[i] += src[i];
  }
}

void mixSubtractScalar(float* dst, const float* src, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) {
    dst[i] -= src[i];
  }
}

void subtractIntoScalar(float* dst, const float* a, const float* b, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) {
    dst[i] = a[i] - b[i];
  }
}

void addRampedScalar(float* dst, const float* src, std::size_t n, float w0, float w1) {
  const float step = n > 0 ? (w1 - w0) / static_cast<float>(n) : 0.0f;
  float w = w0;
  for (std::size_t i = 0; i < n; ++i) {
    dst[i] += w * src[i];
    w += step;
  }
}

void scaleRampedScalar(float* dst, const float* src, std::size_t n, float w0, float w1) {
  const float step = n > 0 ? (w1 - w0) / static_cast<float>(n) : 0.0f;
  float w = w0;
  for (std::size_t i = 0; i < n; ++i) {
    dst[i] = w * src[i];
    w += step;
  }
}

}  // namespace

constinit const MixKernel mixKernelScalar{"scalar",           mixAddScalar,    mixSubtractScalar,
                                          subtractIntoScalar, addRampedScalar, scaleRampedScalar};

}  // namespace plemora
