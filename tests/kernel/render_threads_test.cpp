#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <thread>
#include <vector>

#include "audio/render/render.h"
#include "kernel/buffers.h"

// The render thread and its owner at the same RenderState, as fast as both can.

namespace plemora {
namespace {

constexpr int rounds = 100000;

/// Every buffer is louder than the one before, so a peak that is taken twice, or that comes back
/// after its reset, is not above the one taken before; and the last one must be taken at last.
TEST(RenderThreadsTest, EveryPeakIsTakenOnceAndTheLoudestIsNeverLost) {
  RenderState state(0.5f);
  std::atomic<bool> finished = false;
  std::thread renderThread([&] {
    Buffers buffer({{1, 4}});
    const Buffers output({{1, 4}});
    for (int round = 1; round <= rounds; ++round) {
      buffer.samples(0)[2] = -static_cast<float>(round);
      render(buffer.list(), output.list(), state);
    }
    finished = true;
  });

  float lastInput = 0;
  float lastOutput = 0;
  int outOfOrder = 0;
  const auto take = [&outOfOrder](std::atomic<float>& peak, float& last) {
    const float taken = takePeak(peak);
    if (taken != 0.0f) {
      outOfOrder += taken <= last ? 1 : 0;
      last = taken;
    }
  };
  bool last = false;
  do {
    last = finished;  // asked before the levels are taken: they are then the final ones
    take(state.inputPeak, lastInput);
    take(state.peak, lastOutput);
  } while (!last);
  renderThread.join();

  EXPECT_EQ(outOfOrder, 0);
  EXPECT_EQ(lastInput, static_cast<float>(rounds));
  EXPECT_EQ(lastOutput, static_cast<float>(rounds) / 2);
}

/// However the owner moves the gain meanwhile, each buffer begins where the one before ended.
TEST(RenderThreadsTest, TheGainNeverStepsBetweenBuffers) {
  constexpr std::size_t frames = 8;
  RenderState state(1.0f);
  std::atomic<bool> finished = false;
  int steps = 0;
  std::thread renderThread([&] {
    const Buffers input({{1, frames}}, 1.0f);
    const Buffers buffer({{1, frames}});
    float expected = 1.0f;
    for (int round = 0; round < rounds; ++round) {
      render(input.list(), buffer.list(), state);
      const std::vector<float>& y = buffer.samples(0);
      steps += std::fabs(y[0] - expected) > 0x1p-20f ? 1 : 0;
      expected = y[frames - 1] + (y[1] - y[0]);
    }
    finished = true;
  });
  int changes = 0;
  while (!finished) {
    state.targetGain.store(static_cast<float>(++changes % 5) / 4.0f, std::memory_order_relaxed);
  }
  renderThread.join();
  EXPECT_EQ(steps, 0);
  EXPECT_GT(changes, 0);
}

}  // namespace
}  // namespace plemora
