#include "audio/render/render.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
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

TEST(RenderTest, WithoutRoomInTheOutputTheGainStillMoves) {
  const std::vector<std::vector<Shape>> outputs{
      {}, {{2, 0}}, {{0, 4}}, {{2, 4, false}}, {{2, 0, true, 4}}};
  for (const auto& shapes : outputs) {
    SCOPED_TRACE(shapes.empty() ? 99 : shapes.front().channels);
    const Buffers input = Buffers::planar({Samples(4, 1.0f)});
    const Buffers output(shapes, old);
    RenderState state(1.0f);
    state.targetGain = 0.5f;
    render(input.list(), output.list(), state);
    EXPECT_EQ(state.currentGain, 0.5f);
    EXPECT_EQ(state.peak, 0.0f);
    EXPECT_EQ(state.inputPeak, 0.0f);
    for (std::size_t i = 0; i < output.count(); ++i) {
      EXPECT_EQ(output.samples(i), Samples(output.samples(i).size(), old));
    }
  }
}

TEST(RenderTest, ChannelsComeFromTheTapInOrderAndRepeat) {
  struct Case {
    const char* name;
    std::vector<Shape> input;  ///< channel c of the list, counted through, holds 1 + c
    std::int64_t skip;
    std::vector<Shape> output;
    std::vector<Samples> expected;  ///< each output buffer's first frame
  };
  const Case cases[] = {
      {"stereo to stereo", {{2, 4}}, 0, {{2, 4}}, {{1, 2}}},
      {"planar to interleaved", {{1, 4}, {1, 4}}, 0, {{2, 4}}, {{1, 2}}},
      {"interleaved to planar", {{2, 4}}, 0, {{1, 4}, {1, 4}}, {{1}, {2}}},
      {"mono to all", {{1, 4}}, 0, {{2, 4}, {1, 4}}, {{1, 1}, {1}}},
      {"stereo repeats", {{2, 4}}, 0, {{5, 4}}, {{1, 2, 1, 2, 1}}},
      {"stereo repeats across buffers", {{2, 4}}, 0, {{1, 4}, {2, 4}}, {{1}, {2, 1}}},
      {"wider than the output", {{4, 4}}, 0, {{2, 4}}, {{1, 2}}},
      {"sub-device inputs first", {{2, 4}, {1, 4}, {2, 4}}, 2, {{2, 4}}, {{4, 5}}},
      {"a negative skip is none", {{2, 4}, {2, 4}}, -1, {{4, 4}}, {{1, 2, 3, 4}}},
      {"0 channels count as one", {{1, 4}, {0, 4}, {1, 4}}, 0, {{4, 4}}, {{1, 2, 3, 1}}},
      {"a silent buffer keeps its channels",
       {{1, 4}, {2, 4, false}, {1, 4}},
       0,
       {{5, 4}},
       {{1, 0, 0, 4, 1}}},
      {"an absent output buffer keeps its channels",
       {{4, 4}},
       0,
       {{2, 4, false}, {2, 4}},
       {{old, old}, {3, 4}}},
      {"an output buffer of 0 channels has none", {{2, 4}}, 0, {{0, 4}, {2, 4}}, {{old}, {1, 2}}},
      {"three by three", {{3, 4}}, 0, {{3, 4}}, {{1, 2, 3}}},
  };
  for (const Case& given : cases) {
    SCOPED_TRACE(given.name);
    Buffers input(given.input);
    float number = 1.0f;
    for (std::size_t buffer = 0; buffer < given.input.size(); ++buffer) {
      const std::size_t channels = std::max<std::size_t>(given.input[buffer].channels, 1);
      for (std::size_t channel = 0; channel < channels; ++channel, ++number) {
        for (std::size_t frame = 0; frame < given.input[buffer].frames; ++frame) {
          input.samples(buffer)[frame * channels + channel] = number;
        }
      }
    }
    // At constant gain and on a ramp: whole buffers are rendered in different ways.
    for (const float target : {1.0f, 0.0f}) {
      Buffers output(given.output, old);
      RenderState state(1.0f);
      state.targetGain = target;
      state.skipInputBuffers = given.skip;
      render(input.list(), output.list(), state);
      for (std::size_t buffer = 0; buffer < given.output.size(); ++buffer) {
        Samples first = output.samples(buffer);
        first.resize(given.expected[buffer].size());
        EXPECT_EQ(first, given.expected[buffer]) << "output buffer " << buffer;
      }
    }
  }
}

TEST(RenderTest, TheShortestTapBufferLimitsTheFramesAndTheRestIsZero) {
  const Buffers input({{1, 7}, {2, 4, true, 4}, {1, 6}}, 1.0f);
  const Buffers output({{1, 6}, {2, 2}, {2, 5, true, 4}}, old);
  RenderState state(1.0f);
  state.targetGain = 0.0f;
  render(input.list(), output.list(), state);
  // The ramp is as long as what is rendered of each buffer: 4, 2 and 4 frames.
  EXPECT_EQ(output.rendered(0), (Samples{1.0f, 0.75f, 0.5f, 0.25f, 0.0f, 0.0f}));
  EXPECT_EQ(output.rendered(1), (Samples{1.0f, 1.0f, 0.5f, 0.5f}));
  Samples whole = output.samples(2);
  whole.resize(10);
  EXPECT_EQ(whole, (Samples{1.0f, 1.0f, 0.75f, 0.75f, 0.5f, 0.5f, 0.25f, 0.25f, 0.0f, 0.0f}));
  EXPECT_EQ(output.samples(2)[10], old) << "what is no whole frame is not part of the buffer";
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
