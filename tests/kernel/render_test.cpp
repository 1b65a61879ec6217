#include "audio/render/render.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "kernel/buffers.h"

namespace plemora {
namespace {

using Samples = std::vector<float>;
using Shape = Buffers::Shape;

constexpr float old = 9.0f;  ///< what the output holds before
constexpr std::int64_t farAway = std::numeric_limits<std::int64_t>::max();

TEST(RenderTest, AChangeOfTheTargetFadesOverOneBuffer) {
  constexpr std::size_t frames = 64;
  const Buffers input = Buffers::planar({Samples(frames, 1.0f)});
  Buffers output({{1, frames}}, old);
  RenderState state(1.0f);
  state.targetGain = 0.0f;

  render(input.list(), output.list(), state);
  for (std::size_t i = 0; i < frames; ++i) {
    EXPECT_EQ(output.samples(0)[i], 1.0f - static_cast<float>(i) / frames) << i;
  }
  EXPECT_EQ(takePeak(state.peak), 1.0f);
  EXPECT_EQ(takePeak(state.inputPeak), 1.0f);

  render(input.list(), output.list(), state);
  EXPECT_EQ(output.rendered(0), Samples(frames, 0.0f));
  EXPECT_EQ(takePeak(state.peak), 0.0f);
  EXPECT_EQ(takePeak(state.inputPeak), 1.0f);
}

TEST(RenderTest, WithoutTapInputTheOutputIsSilentAndThePeaksStay) {
  struct Case {
    const char* name;
    std::vector<Shape> input;
    std::int64_t skip;
  };
  const Case cases[] = {
      {"no buffers", {}, 0},
      {"all skipped", {{2, 8}, {1, 8}}, 2},
      {"more skipped than there are", {{2, 8}}, 3},
      {"far more", {{2, 8}}, farAway},
      {"no data", {{2, 8, false}}, 0},
      {"no frames", {{2, 0}}, 0},
      {"less than a frame", {{2, 0, true, 4}}, 0},
      {"one of two buffers has no frames", {{1, 8}, {1, 0}}, 0},
  };
  for (const Case& given : cases) {
    SCOPED_TRACE(given.name);
    const Buffers input(given.input, 0.8f);
    Buffers output({{2, 8}, {1, 4}}, old);
    RenderState state(0.5f);
    state.targetGain = 0.25f;
    state.skipInputBuffers = given.skip;
    state.peak = 0.3f;
    state.inputPeak = 0.6f;

    render(input.list(), output.list(), state);
    EXPECT_EQ(output.rendered(0), Samples(16, 0.0f));
    EXPECT_EQ(output.rendered(1), Samples(4, 0.0f));
    EXPECT_EQ(state.peak, 0.3f);
    EXPECT_EQ(state.inputPeak, 0.6f);
    EXPECT_EQ(state.currentGain, 0.25f);
  }
}

TEST(RenderTest, RendersInPlace) {
  for (const float target : {0.5f, 0.25f}) {
    for (const std::uint32_t channels : {1u, 2u, 3u}) {
      const Buffers both({{channels, 100}}, 1.0f);
      const Buffers input({{channels, 100}}, 1.0f);
      const Buffers separate({{channels, 100}}, old);
      RenderState state(0.5f);
      RenderState separateState(0.5f);
      state.targetGain = target;
      separateState.targetGain = target;
      render(both.list(), both.list(), state);
      render(input.list(), separate.list(), separateState);
      EXPECT_EQ(both.rendered(0), separate.rendered(0)) << channels << " channels to " << target;
    }
  }
}

TEST(RenderTest, PeaksGatherOverBuffersUntilTheyAreTaken) {
  RenderState state(0.5f);
  Buffers output({{1, 2}});
  for (const float level : {-0.5f, 0.75f, 0.25f}) {
    render(Buffers::planar({{0.0f, level}}).list(), output.list(), state);
  }
  EXPECT_EQ(takePeak(state.inputPeak), 0.75f);
  EXPECT_EQ(takePeak(state.peak), 0.375f);
  EXPECT_EQ(takePeak(state.peak), 0.0f);

  const float nan = std::numeric_limits<float>::quiet_NaN();
  render(Buffers::planar({{nan, 0.25f}}).list(), output.list(), state);
  EXPECT_EQ(takePeak(state.inputPeak), 0.25f);
  EXPECT_EQ(takePeak(state.peak), 0.125f);
}

}  // namespace
}  // namespace plemora
