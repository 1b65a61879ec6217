#include "adapters/linux/pipewire/correction_renderer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

#include "audio/render/render.h"
#include "support/realtime_guard.h"

namespace plemora {
namespace {

constexpr std::uint32_t frames = 64;

// Ports backed by vectors; one that was never given does not exist.
class FakePorts : public CorrectionPorts {
 public:
  const float* input(std::uint32_t port) override {
    const auto found = inputs.find(port);
    return found == inputs.end() ? nullptr : found->second.data();
  }
  float* output(std::uint32_t group, std::uint32_t channel) override {
    const auto found = outputs.find({group, channel});
    return found == outputs.end() ? nullptr : found->second.data();
  }

  std::vector<float> stream(std::uint32_t port, float seed, std::uint32_t length = frames) {
    std::vector<float> samples(length);
    for (std::uint32_t i = 0; i < length; ++i) {
      samples[i] = seed * static_cast<float>(static_cast<int>((i * 37) % 23) - 11) / 16.0f;
    }
    return inputs[port] = samples;
  }
  // Stale samples in an output must never be heard.
  void sink(std::uint32_t group, std::uint32_t channels, std::uint32_t length = frames) {
    for (std::uint32_t channel = 0; channel < channels; ++channel) {
      outputs[{group, channel}].assign(length, 99.0f);
    }
  }

  const std::vector<float>& heard(std::uint32_t group) { return outputs.at({group, 1}); }

  std::map<std::uint32_t, std::vector<float>> inputs;
  std::map<std::pair<std::uint32_t, std::uint32_t>, std::vector<float>> outputs;
};

struct Tap {
  explicit Tap(float gain) : state(gain) {
    block = [this](AudioBufferList in, AudioBufferList out) {
      ++calls;
      render(in, out, state);
    };
  }
  RenderState state;
  AudioIOBlock block;
  int calls = 0;
};

// A stereo slot that is fully there, with its direct path.
std::unique_ptr<CorrectionSlot> slotAt(std::uint32_t port, std::uint32_t group = 0,
                                       float weight = 1.0f, std::uint32_t direct = 3) {
  auto slot = std::make_unique<CorrectionSlot>();
  slot->port = port;
  slot->group = group;
  slot->channels = 2;
  slot->weight = weight;
  slot->targetWeight = weight;
  slot->directChannels = direct;
  slot->linkedChannels = 3;
  return slot;
}

class CorrectionRendererTest : public testing::Test {
 protected:
  void cycle(const CorrectionPlan& plan, std::vector<std::uint32_t> groups = {2},
             std::uint32_t length = frames) {
    const RealtimeGuard::Scope scope;
    renderCorrections(plan, groups, ++cycles, length, ports, scratch);
  }
  const std::vector<float>& out(std::uint32_t group, std::uint32_t channel) {
    return ports.outputs.at({group, channel});
  }
  void SetUp() override { RealtimeGuard::reset(); }
  void TearDown() override { EXPECT_THAT(RealtimeGuard::violations(), testing::IsEmpty()); }

  FakePorts ports;
  CorrectionScratch scratch;
  std::uint64_t cycles = 0;
};

TEST_F(CorrectionRendererTest, DirectPathAndCorrectionAddUpToTheTapsGain) {
  struct Case {
    float gain;
    std::uint32_t direct;  // channels that the direct link carries
  };
  for (const Case& given : {Case{0.25f, 3}, Case{0.0f, 3}, Case{0.25f, 0}, Case{2.0f, 1}}) {
    SCOPED_TRACE(given.gain);
    const auto left = ports.stream(0, 1.0f);
    const auto right = ports.stream(1, -0.5f);
    ports.sink(0, 2);
    Tap tap(given.gain);
    const auto slot = slotAt(0, 0, 1.0f, given.direct);
    cycle({{&tap.block, 0, {slot.get()}}});
    for (std::uint32_t i = 0; i < frames; ++i) {
      const float directLeft = (given.direct & 1u) != 0 ? left[i] : 0.0f;
      const float directRight = (given.direct & 2u) != 0 ? right[i] : 0.0f;
      EXPECT_FLOAT_EQ(directLeft + out(0, 0)[i], given.gain * left[i]) << i;
      EXPECT_FLOAT_EQ(directRight + out(0, 1)[i], given.gain * right[i]) << i;
      if (given.gain == 0.0f) {
        EXPECT_EQ(directLeft + out(0, 0)[i], 0.0f) << "silence is exact";
      }
    }
  }
}

TEST_F(CorrectionRendererTest, FadesInAndOutAcrossOneBufferAndThenRests) {
  const auto left = ports.stream(0, 1.0f);
  ports.stream(1, 1.0f);
  ports.sink(0, 2);
  Tap tap(0.0f);
  const auto slot = slotAt(0, 0, 0.0f);
  const CorrectionPlan plan{{&tap.block, 0, {slot.get()}}};

  cycle(plan);
  EXPECT_EQ(tap.calls, 0) << "a slot without weight is not rendered";
  EXPECT_THAT(out(0, 0), testing::Each(0.0f));

  for (const float target : {1.0f, 0.0f}) {
    slot->targetWeight = target;
    cycle(plan);
    EXPECT_EQ(slot->weight.load(), target);
    for (std::uint32_t i = 0; i < frames; ++i) {
      const float along = static_cast<float>(i) / frames;
      const float weight = target == 1.0f ? along : 1.0f - along;
      EXPECT_NEAR(left[i] + out(0, 0)[i], (1.0f - weight) * left[i], 1e-5f) << i;
    }
  }
  cycle(plan);
  EXPECT_THAT(out(0, 0), testing::Each(0.0f));
}

TEST_F(CorrectionRendererTest, ARouteIsTakenFromTheHomeAndHeardOnTheTarget) {
  const auto left = ports.stream(0, 1.0f);
  const auto right = ports.stream(1, 0.5f);
  ports.sink(0, 2);
  ports.sink(1, 6);
  Tap tap(0.5f);
  const auto slot = slotAt(0);
  cycle({{&tap.block, 1, {slot.get()}}}, {2, 6});
  for (std::uint32_t i = 0; i < frames; ++i) {
    EXPECT_EQ(left[i] + out(0, 0)[i], 0.0f);
    EXPECT_EQ(right[i] + out(0, 1)[i], 0.0f);
    for (std::uint32_t channel = 0; channel < 6; ++channel) {
      EXPECT_EQ(out(1, channel)[i], 0.5f * (channel % 2 == 0 ? left : right)[i]) << channel;
    }
  }
}

TEST_F(CorrectionRendererTest, StreamsOfOneTapShareOneCallAndTapsOfOneSinkOneOutput) {
  const auto first = ports.stream(0, 1.0f);
  ports.stream(1, 1.0f);
  const auto second = ports.stream(2, 0.25f);
  ports.stream(3, 0.25f);
  const auto other = ports.stream(4, -0.75f);
  ports.stream(5, -0.75f);
  ports.sink(0, 2);
  Tap both(0.5f);
  Tap alone(0.0f);
  const auto slots = {slotAt(0), slotAt(2), slotAt(4)};
  const auto* slot = slots.begin();
  cycle({{&both.block, 0, {slot[0].get(), slot[1].get()}}, {&alone.block, 0, {slot[2].get()}}});
  EXPECT_EQ(both.calls, 1) << "the gain's ramp must be used up once a cycle";
  for (std::uint32_t i = 0; i < frames; ++i) {
    const float direct = first[i] + second[i] + other[i];
    EXPECT_NEAR(direct + out(0, 0)[i], 0.5f * (first[i] + second[i]), 1e-6f) << i;
  }
}

TEST_F(CorrectionRendererTest, WhatTheStreamsOfATapPlayThemselvesIsTakenAway) {
  struct Case {
    const char* what;
    std::vector<std::uint32_t> direct;  ///< of each stream: channels that it reaches by itself
    std::vector<float> weights;
  };
  const Case cases[] = {
      {"all alike", {3, 3, 3, 3, 3}, {1, 1, 1, 1, 1}},
      {"one on another channel", {3, 3, 1, 3}, {1, 1, 1, 1}},
      {"one not yet there", {3, 3, 3}, {1, 0, 1}},
  };
  for (const Case& given : cases) {
    SCOPED_TRACE(given.what);
    Tap tap(0.25f);
    CorrectionPlan plan{{&tap.block, 0, {}}};
    std::vector<std::unique_ptr<CorrectionSlot>> slots;
    std::vector<float> wanted(2 * std::size_t{frames}, 0.0f);
    for (std::uint32_t i = 0; i < given.direct.size(); ++i) {
      slots.push_back(slotAt(2 * i, 0, given.weights[i], given.direct[i]));
      plan[0].slots.push_back(slots.back().get());
      for (std::uint32_t c = 0; c < 2; ++c) {
        const auto samples = ports.stream(2 * i + c, 1.0f / static_cast<float>(i + c + 1));
        const float direct = (given.direct[i] >> c & 1u) != 0 ? 1.0f : 0.0f;
        for (std::uint32_t k = 0; k < frames; ++k) {
          wanted[c * frames + k] += given.weights[i] * (0.25f - direct) * samples[k];
        }
      }
    }
    ports.sink(0, 2);
    cycle(plan);
    for (std::uint32_t k = 0; k < 2 * frames; ++k) {
      EXPECT_NEAR(out(0, k / frames)[k % frames], wanted[k], 1e-6f) << k;
    }
  }
}

TEST_F(CorrectionRendererTest, MissingPortsAreSilentAndWhatNobodyWritesIsCleared) {
  const auto right = ports.stream(1, 1.0f);
  ports.sink(0, 2);
  ports.sink(1, 1);
  Tap tap(0.5f);
  const auto slot = slotAt(0);
  slot->linkedChannels = 2;
  cycle({{&tap.block, 0, {slot.get()}}}, {2, 1});
  EXPECT_THAT(out(0, 0), testing::Each(0.0f));
  EXPECT_EQ(out(0, 1)[5], 0.5f * right[5] - right[5]);
  EXPECT_THAT(out(1, 0), testing::Each(0.0f));

  ports.outputs.clear();  // no sink is linked: nothing to write to, nothing to crash on
  cycle({{&tap.block, 0, {slot.get()}}}, {2, 1});
  EXPECT_EQ(tap.calls, 2);
}

TEST_F(CorrectionRendererTest, ASlotStartsWithTheFirstSamplesOnAllItsChannels) {
  const auto left = ports.stream(0, 1.0f);
  ports.sink(0, 2);
  Tap tap(0.0f);
  const auto slot = slotAt(0);
  const CorrectionPlan plan{{&tap.block, 0, {slot.get()}}};
  cycle(plan);
  EXPECT_EQ(slot->seenChannels.load(), 1u);
  EXPECT_THAT(out(0, 0), testing::Each(0.0f)) << "half a stream is not corrected";

  ports.stream(1, 1.0f);
  cycle(plan);
  EXPECT_EQ(left[7] + out(0, 0)[7], 0.0f);
  ports.inputs.erase(1);  // an empty cycle later on is the stream's own
  cycle(plan);
  EXPECT_EQ(left[7] + out(0, 0)[7], 0.0f);
}

TEST_F(CorrectionRendererTest, ASuccessorTakesOverWithoutLosingOrDoublingASample) {
  // The stream has moved from sink 0 to sink 1; the tap is still heard on sink 0.
  for (const bool predecessorFirst : {true, false}) {
    SCOPED_TRACE(predecessorFirst);
    FakePorts older;
    FakePorts newer;
    const auto samples = older.stream(0, 1.0f);
    older.inputs[1] = samples;
    newer.inputs = older.inputs;
    Tap tap(0.5f);
    const auto predecessor = slotAt(0, 0, 1.0f, 0);
    const auto successor = slotAt(0, 1, 0.0f);
    successor->startsWhenFed = true;
    successor->predecessor = predecessor.get();
    for (int round = 0; round < 3; ++round) {
      older.sink(0, 2);
      newer.sink(0, 2);
      newer.sink(1, 2);
      ++cycles;
      const auto renderOlder = [&] {
        renderCorrections({{&tap.block, 0, {predecessor.get()}}}, {2}, cycles, frames, older,
                          scratch);
      };
      const auto renderNewer = [&] {
        renderCorrections({{&tap.block, 0, {successor.get()}}}, {2, 2}, cycles, frames, newer,
                          scratch);
      };
      predecessorFirst ? renderOlder() : renderNewer();
      predecessorFirst ? renderNewer() : renderOlder();
      for (std::uint32_t i = 0; i < frames; ++i) {
        ASSERT_EQ(older.heard(0)[i] + newer.heard(0)[i], 0.5f * samples[i]) << round;
        ASSERT_EQ(samples[i] + newer.heard(1)[i], 0.0f) << round;
      }
    }
    EXPECT_EQ(successor->predecessor.load(), nullptr);
    EXPECT_EQ(predecessor->targetWeight.load(), 0.0f);
  }
}

TEST_F(CorrectionRendererTest, AStreamChangesFiltersWithoutASampleThatDiffers) {
  // Both filters play to the stream's own sink.
  for (const bool predecessorFirst : {true, false}) {
    SCOPED_TRACE(predecessorFirst);
    FakePorts older;
    FakePorts newer;
    const auto samples = older.stream(0, 1.0f);
    older.inputs[1] = samples;
    newer.inputs = older.inputs;
    Tap tap(0.5f);
    const auto predecessor = slotAt(0, 0, 1.0f);
    const auto successor = slotAt(0, 0, 0.0f);
    successor->startsWhenFed = true;
    successor->isLikePredecessor = true;
    successor->predecessor = predecessor.get();
    for (int round = 0; round < 3; ++round) {
      older.sink(0, 2);
      newer.sink(0, 2);
      ++cycles;
      for (const bool isOlder : {predecessorFirst, !predecessorFirst}) {
        renderCorrections({{&tap.block, 0, {isOlder ? predecessor.get() : successor.get()}}}, {2},
                          cycles, frames, isOlder ? older : newer, scratch);
      }
      for (std::uint32_t i = 0; i < frames; ++i) {
        ASSERT_EQ(samples[i] + older.heard(0)[i] + newer.heard(0)[i], 0.5f * samples[i]) << round;
      }
    }
    EXPECT_EQ(successor->weight.load(), 1.0f);
    EXPECT_EQ(predecessor->targetWeight.load(), 0.0f);
  }
}

TEST_F(CorrectionRendererTest, ASuccessorWaitsForTheOutputsOfItsFilter) {
  ports.stream(0, 1.0f);
  ports.stream(1, 1.0f);
  Tap tap(0.25f);
  const auto predecessor = slotAt(4);
  const auto slot = slotAt(0, 0, 0.0f);
  slot->predecessor = predecessor.get();
  slot->startsWhenFed = true;
  const CorrectionPlan plan{{&tap.block, 0, {slot.get()}}};
  cycle(plan);
  EXPECT_EQ(predecessor->weight, 1.0f) << "it would be heard in neither place";
  ports.sink(0, 2);
  cycle(plan);
  EXPECT_EQ(predecessor->weight, 0.0f);
  EXPECT_EQ(slot->weight, 1.0f);
}

TEST_F(CorrectionRendererTest, CountsTheCyclesInWhichALinkedInputStaysEmpty) {
  ports.stream(0, 1.0f);
  ports.stream(1, 1.0f);
  ports.sink(0, 2);
  Tap tap(0.5f);
  const auto slot = slotAt(0);
  const CorrectionPlan plan{{&tap.block, 0, {slot.get()}}};
  cycle(plan);
  EXPECT_EQ(slot->silentCycles.load(), 0u);
  const auto right = ports.inputs.extract(1);
  cycle(plan);
  cycle(plan);
  EXPECT_EQ(slot->silentCycles.load(), 2u);
  ports.inputs[1] = right.mapped();
  cycle(plan);
  EXPECT_EQ(slot->silentCycles.load(), 0u);
}

TEST_F(CorrectionRendererTest, ACycleLongerThanTheBuffersIsCutIntoPieces) {
  constexpr std::uint32_t length = CorrectionScratch::maxFrames + 100;
  const auto left = ports.stream(0, 1.0f, length);
  ports.stream(1, 1.0f, length);
  ports.sink(0, 2, length);
  Tap tap(0.25f);
  const auto slot = slotAt(0);
  cycle({{&tap.block, 0, {slot.get()}}}, {2}, length);
  EXPECT_EQ(tap.calls, 2);
  for (std::uint32_t i = 0; i < length; ++i) {
    ASSERT_EQ(out(0, 0)[i], 0.25f * left[i] - left[i]) << i;
  }
}

}  // namespace
}  // namespace plemora
