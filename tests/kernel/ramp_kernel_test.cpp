#include "audio/render/ramp_kernel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "kernel/sample_sets.h"

namespace plemora {
namespace {

/// Room before and after the rendered samples, which must stay as it was.
constexpr std::size_t margin = 8;
constexpr float untouched = 42.0f;

/// Samples enough for every call of a sweep.
constexpr std::size_t enough = 4099 * 3 + 2 * margin;

/// One call of one operation of a kernel.
struct Call {
  enum class Operation { contiguous, stereo, strided };

  Operation operation = Operation::contiguous;
  std::size_t frames = 0;
  float gain = 1.0f;
  float step = 0.0f;
  std::size_t inOffset = 0;  ///< samples past an aligned address
  std::size_t outOffset = 0;
  std::size_t inStride = 1;
  std::size_t outStride = 1;
  bool inPlace = false;

  std::size_t channels() const { return operation == Operation::stereo ? 2 : 1; }
  std::size_t inSize() const { return inOffset + frames * channels() * inStride + margin; }
};

struct Outcome {
  std::vector<float> out;  ///< with the margins
  RampPeaks peaks;
};

Outcome run(const RampKernel& kernel, const Call& call, const std::vector<float>& samples,
            RampPeaks peaks = {}) {
  Outcome outcome;
  const float* in = samples.data() + call.inOffset;
  if (call.inPlace) {
    outcome.out.assign(samples.begin(),
                       samples.begin() + static_cast<std::ptrdiff_t>(call.inSize()));
    in = outcome.out.data() + call.inOffset;
  } else {
    outcome.out.assign(call.outOffset + call.frames * call.channels() * call.outStride + 2 * margin,
                       untouched);
  }
  float* const out = outcome.out.data() + (call.inPlace ? call.inOffset : call.outOffset + margin);
  switch (call.operation) {
    case Call::Operation::contiguous:
      kernel.contiguous(in, out, call.frames, call.gain, call.step, peaks);
      break;
    case Call::Operation::stereo:
      kernel.stereo(in, out, call.frames, call.gain, call.step, peaks);
      break;
    case Call::Operation::strided:
      kernel.strided(in, call.inStride, out, call.outStride, call.frames, call.gain, call.step,
                     peaks);
      break;
  }
  outcome.peaks = peaks;
  return outcome;
}

/// Calls of all lengths, each with other offsets, strides and places, at that gain and with that
/// change over the whole call.
std::vector<Call> sweep(Call::Operation operation, float from, float to) {
  std::vector<Call> calls;
  for (const std::size_t frames : sweptLengths()) {
    for (std::size_t variation = 0; variation < 16; ++variation) {
      Call call;
      call.operation = operation;
      call.frames = frames;
      call.gain = from;
      call.step = frames > 0 ? (to - from) / static_cast<float>(frames) : 0.0f;
      call.inOffset = variation % 4;
      call.outOffset = variation / 4;
      call.inPlace = variation == 5;
      if (operation == Call::Operation::strided) {
        call.inStride = 1 + variation % 3;
        call.outStride = call.inPlace ? call.inStride : 1 + variation / 3;
      }
      calls.push_back(call);
    }
  }
  return calls;
}

constexpr Call::Operation operations[] = {Call::Operation::contiguous, Call::Operation::stereo,
                                          Call::Operation::strided};

std::string describe(const RampKernel& kernel, const Call& call) {
  return std::string(kernel.name) + ", operation " +
         std::to_string(static_cast<int>(call.operation)) + ", " + std::to_string(call.frames) +
         " frames, gain " + std::to_string(call.gain) + " step " + std::to_string(call.step) +
         ", offsets " + std::to_string(call.inOffset) + " " + std::to_string(call.outOffset) +
         (call.inPlace ? ", in place" : "");
}

TEST(RampKernelTest, EqualsTheScalarLoopBitForBitAtConstantGain) {
  const RampKernel& scalar = *availableRampKernels().front();
  for (const RampKernel* kernel : availableRampKernels()) {
    for (const SampleSet set : {SampleSet::noise, SampleSet::denormals, SampleSet::specials}) {
      const auto samples = makeSamples(set, enough, 7);
      for (const float gain : {0.0f, 1.0f, 0.3f, 2.5f, 1e-30f}) {
        for (const Call::Operation operation : operations) {
          for (const Call& call : sweep(operation, gain, gain)) {
            SCOPED_TRACE(describe(*kernel, call) + " " + nameOf(set));
            const Outcome expected = run(scalar, call, samples);
            const Outcome actual = run(*kernel, call, samples);
            ASSERT_TRUE(sameBits(expected.out, actual.out));
            ASSERT_EQ(bitsOf(expected.peaks.input), bitsOf(actual.peaks.input));
            ASSERT_EQ(bitsOf(expected.peaks.output), bitsOf(actual.peaks.output));
          }
        }
      }
    }
  }
}

TEST(RampKernelTest, StaysWithinTheErrorBoundOnRamps) {
  const float ramps[][2] = {{1.0f, 0.0f}, {0.0f, 1.0f}, {0.3f, 0.29f}, {0.01f, 4.0f}};
  const RampKernel& scalar = *availableRampKernels().front();
  const auto samples = makeSamples(SampleSet::noise, enough, 11);
  for (const RampKernel* kernel : availableRampKernels()) {
    for (const auto& [from, to] : ramps) {
      for (const Call::Operation operation : operations) {
        for (const Call& call : sweep(operation, from, to)) {
          SCOPED_TRACE(describe(*kernel, call));
          const Outcome expected = run(scalar, call, samples);
          const Outcome actual = run(*kernel, call, samples);
          ASSERT_EQ(expected.out.size(), actual.out.size());
          const float largestGain = std::max(from, to);
          // |x| is at most 1 and known only by place; the scalar's own y / g would divide by 0.
          Call unity = call;
          unity.gain = 1.0f;
          unity.step = 0.0f;
          const Outcome plain = run(scalar, unity, samples);
          for (std::size_t i = 0; i < expected.out.size(); ++i) {
            const float bound =
                static_cast<float>(call.frames) * 0x1p-23f * largestGain * std::fabs(plain.out[i]);
            ASSERT_LE(std::fabs(expected.out[i] - actual.out[i]), bound) << "sample " << i;
          }
          ASSERT_EQ(expected.peaks.input, actual.peaks.input);
          ASSERT_NEAR(expected.peaks.output, actual.peaks.output,
                      static_cast<float>(call.frames) * 0x1p-23f * largestGain);
        }
      }
    }
  }
}

TEST(RampKernelTest, PeaksTakeInfinityAndNeverNaN) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const float infinity = std::numeric_limits<float>::infinity();
  struct Case {
    float sample;
    float gain;
    RampPeaks after;  ///< with 0.5 seen before
  };
  const Case cases[] = {
      {nan, 1.0f, {0.5f, 0.5f}},
      {-nan, 1.0f, {0.5f, 0.5f}},
      {-infinity, 1.0f, {infinity, infinity}},
      {infinity, 0.0f, {infinity, 0.5f}},  // 0 * infinity is NaN
      {0.75f, nan, {0.75f, 0.5f}},
      {3e38f, 2.0f, {3e38f, infinity}},
      {-0.25f, 1.0f, {0.5f, 0.5f}},
  };
  for (const RampKernel* kernel : availableRampKernels()) {
    for (const Case& expected : cases) {
      // At every place of a call that has whole blocks and a rest.
      for (std::size_t at = 0; at < 75; ++at) {
        SCOPED_TRACE(std::string(kernel->name) + " sample " + std::to_string(expected.sample) +
                     " at " + std::to_string(at));
        std::vector<float> buffer(75, 0.0f);
        buffer[at] = expected.sample;
        RampPeaks peaks{0.5f, 0.5f};
        kernel->contiguous(buffer.data(), buffer.data(), buffer.size(), expected.gain, 0.0f, peaks);
        ASSERT_EQ(peaks.input, expected.after.input);
        ASSERT_EQ(peaks.output, expected.after.output);
      }
    }
  }
}

}  // namespace
}  // namespace plemora
