#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "audio/render/render.h"
#include "kernel/buffers.h"

namespace plemora {
namespace {

/// What a tap's output ought to be, thought of channel by channel and in double precision: no
/// strides, no pointers, no sums of steps.
class Model {
 public:
  Model(const Buffers& input, std::int64_t skip) {
    for (std::size_t i = 0; i < input.count(); ++i) {
      if (static_cast<std::int64_t>(i) < skip) {
        continue;
      }
      const AudioBuffer& buffer = input.list()[i];
      const std::size_t width = buffer.mNumberChannels == 0 ? 1 : buffer.mNumberChannels;
      const std::size_t frames = buffer.mDataByteSize / 4 / width;
      frames_ = frames_ ? std::min(*frames_, frames) : frames;
      for (std::size_t c = 0; c < width; ++c) {
        std::vector<float> channel;
        for (std::size_t f = 0; f < frames && buffer.mData; ++f) {
          channel.push_back(input.samples(i)[f * width + c]);
        }
        channels_.push_back(channel);
        present_.push_back(buffer.mData != nullptr);
      }
    }
  }

  std::size_t rendered(std::size_t outputFrames) const {
    return std::min(frames_.value_or(0), outputFrames);
  }

  /// The tap's sample for a channel of the whole output; none where there is only silence.
  std::optional<float> sample(std::size_t outputChannel, std::size_t frame,
                              std::size_t outputFrames) const {
    if (channels_.empty() || frame >= rendered(outputFrames)) {
      return std::nullopt;
    }
    const std::size_t source = outputChannel % channels_.size();
    return present_[source] ? std::optional(channels_[source][frame]) : std::nullopt;
  }

 private:
  std::vector<std::vector<float>> channels_;
  std::vector<bool> present_;
  std::optional<std::size_t> frames_;
};

std::vector<Buffers::Shape> randomShapes(std::mt19937& random, std::size_t frames) {
  // Mostly one width and one length, as devices have them, so that the fast ways are taken too.
  const std::uint32_t width = random() % 4;
  std::vector<Buffers::Shape> shapes(random() % 5);
  for (Buffers::Shape& shape : shapes) {
    shape.channels = random() % 3 == 0 ? random() % 8 : width;
    shape.frames = random() % 5 == 0 ? random() % 80 : frames;
    shape.hasData = random() % 10 != 0;
    shape.extraBytes = random() % 6 == 0 && shape.channels > 1 ? 4 : 0;
  }
  return shapes;
}

std::string describe(const Buffers& buffers) {
  std::string text;
  for (const AudioBuffer& buffer : buffers.list()) {
    text += " " + std::to_string(buffer.mNumberChannels) + "ch/" +
            std::to_string(buffer.mDataByteSize) + (buffer.mData ? "" : " absent");
  }
  return text;
}

TEST(RenderRandomTest, AnyLayoutComesOutAsTheModelSays) {
  constexpr float old = 9.0f;
  std::mt19937 random(20240229);
  std::uniform_real_distribution<float> unit(-1.0f, 1.0f);
  for (int round = 0; round < 4000; ++round) {
    const std::size_t frames = random() % 100;
    Buffers input(randomShapes(random, frames));
    for (std::size_t i = 0; i < input.count(); ++i) {
      for (float& sample : input.samples(i)) {
        sample = unit(random);
      }
    }
    Buffers output(randomShapes(random, frames), old);
    const float from = static_cast<float>(random() % 5) / 4.0f;
    const float to = random() % 2 ? from : static_cast<float>(random() % 7) / 4.0f;
    RenderState state(from);
    state.targetGain = to;
    state.skipInputBuffers = static_cast<std::int64_t>(random() % 6) - 1;
    SCOPED_TRACE("round " + std::to_string(round) + ", skip " +
                 std::to_string(state.skipInputBuffers) + ", in" + describe(input) + ", out" +
                 describe(output) + ", gain " + std::to_string(from) + " to " + std::to_string(to));
    render(input.list(), output.list(), state);

    const Model model(input, state.skipInputBuffers);
    double peak = 0;
    float inputPeak = 0;
    std::size_t base = 0;
    for (std::size_t b = 0; b < output.count(); ++b) {
      const AudioBuffer& buffer = output.list()[b];
      const std::size_t width = buffer.mNumberChannels;
      const std::size_t outputFrames = width ? buffer.mDataByteSize / 4 / width : 0;
      const std::size_t written = buffer.mData ? outputFrames * width : 0;
      const auto n = static_cast<double>(model.rendered(outputFrames));
      for (std::size_t i = 0; i < written; ++i) {
        const std::size_t frame = i / width;
        const auto x = model.sample(base + i % width, frame, outputFrames);
        const double gain =
            from + (static_cast<double>(to) - from) * static_cast<double>(frame) / std::max(n, 1.0);
        const double expected = x ? gain * *x : 0.0;
        const double bound = from == to
                                 ? std::abs(expected) * 0x1p-24
                                 : n * 0x1p-23 * std::max(from, to) * std::abs(x.value_or(0));
        ASSERT_LE(std::abs(expected - output.samples(b)[i]), bound)
            << "buffer " << b << " sample " << i;
        peak = std::max(peak, std::abs(expected));
        inputPeak = std::max(inputPeak, std::abs(x.value_or(0)));
      }
      for (std::size_t i = written; i < output.samples(b).size(); ++i) {
        ASSERT_EQ(output.samples(b)[i], old) << "buffer " << b << " sample " << i;
      }
      base += width;
    }
    ASSERT_EQ(state.inputPeak, inputPeak);
    ASSERT_NEAR(state.peak, peak, 100 * 0x1p-23 * std::max(from, to));
    ASSERT_EQ(state.currentGain, to);
  }
}

}  // namespace
}  // namespace plemora
