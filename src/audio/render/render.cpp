#include "audio/render/render.h"

#include <algorithm>
#include <cstddef>

#include "audio/render/mix_kernel.h"
#include "audio/render/ramp_kernel.h"

namespace plemora {
namespace {

constexpr std::size_t sampleSize = sizeof(float);

/// Channels that an input buffer stands for.
std::size_t channelsOf(const AudioBuffer& buffer) {
  return std::max<std::size_t>(buffer.mNumberChannels, 1);
}

/// The gain over one output buffer.
struct Ramp {
  float gain;
  float step;
  std::size_t frames;
};

/// One channel of one buffer: a strided run of samples, null without data.
struct Channel {
  float* data = nullptr;
  std::size_t stride = 1;
};

/// The tap's part of the input list.
class TapInput {
 public:
  explicit TapInput(AudioBufferList buffers) : buffers_(buffers) {
    for (const AudioBuffer& buffer : buffers_) {
      const std::size_t frames = buffer.mDataByteSize / (channelsOf(buffer) * sampleSize);
      frames_ = channels_ == 0 ? frames : std::min(frames_, frames);
      channels_ += channelsOf(buffer);
    }
  }

  std::size_t channels() const { return channels_; }
  std::size_t frames() const { return frames_; }

  /// The buffer that holds that channel, below channels(); `index` becomes the place within it.
  const AudioBuffer& locate(std::size_t& index) const {
    auto buffer = buffers_.begin();
    while (index >= channelsOf(*buffer)) {
      index -= channelsOf(*buffer);
      ++buffer;
    }
    return *buffer;
  }

 private:
  AudioBufferList buffers_;
  std::size_t channels_ = 0;
  std::size_t frames_ = 0;
};

AudioBufferList withoutLeading(AudioBufferList buffers, std::int64_t skipped) {
  const auto count = static_cast<std::int64_t>(buffers.size());
  return buffers.subspan(static_cast<std::size_t>(std::clamp<std::int64_t>(skipped, 0, count)));
}

void silence(Channel channel, std::size_t from, std::size_t to) {
  if (channel.stride == 1) {
    clear(channel.data + from, to - from);
    return;
  }
  for (std::size_t i = from; i < to; ++i) {
    channel.data[i * channel.stride] = 0.0f;
  }
}

/// Renders the whole buffer at once if its channels are, in order, those of one input buffer and
/// lie beside each other in a way that a kernel knows. False when it is not so.
bool renderTogether(const TapInput& tap, const AudioBuffer& output, std::size_t base, Ramp ramp,
                    RampPeaks& peaks) {
  const std::size_t channels = output.mNumberChannels;
  std::size_t first = base % tap.channels();
  const AudioBuffer& source = tap.locate(first);
  if (first != 0 || channelsOf(source) != channels || !source.mData) {
    return false;
  }
  const auto* const in = static_cast<const float*>(source.mData);
  auto* const out = static_cast<float*>(output.mData);
  if (channels == 1) {
    rampKernel().contiguous(in, out, ramp.frames, ramp.gain, ramp.step, peaks);
  } else if (ramp.step == 0.0f) {
    rampKernel().contiguous(in, out, ramp.frames * channels, ramp.gain, 0.0f, peaks);
  } else if (channels == 2) {
    rampKernel().stereo(in, out, ramp.frames, ramp.gain, ramp.step, peaks);
  } else {
    return false;
  }
  return true;
}

void renderChannel(const TapInput& tap, Channel output, std::size_t source, std::size_t frames,
                   Ramp ramp, RampPeaks& peaks) {
  const AudioBuffer& buffer = tap.locate(source);
  if (!buffer.mData) {
    silence(output, 0, frames);
    return;
  }
  const auto* const in = static_cast<const float*>(buffer.mData) + source;
  rampKernel().strided(in, channelsOf(buffer), output.data, output.stride, ramp.frames, ramp.gain,
                       ramp.step, peaks);
  silence(output, ramp.frames, frames);
}

void renderBuffer(const TapInput& tap, const AudioBuffer& output, std::size_t base, float from,
                  float to, RampPeaks& peaks) {
  const std::size_t channels = output.mNumberChannels;
  auto* const data = static_cast<float*>(output.mData);
  const std::size_t frames = output.mDataByteSize / (channels * sampleSize);
  if (tap.channels() == 0) {
    clear(data, frames * channels);
    return;
  }
  const std::size_t n = std::min(tap.frames(), frames);
  const Ramp ramp{from, n > 0 ? (to - from) / static_cast<float>(n) : 0.0f, n};
  if (renderTogether(tap, output, base, ramp, peaks)) {
    clear(data + n * channels, (frames - n) * channels);
    return;
  }
  for (std::size_t k = 0; k < channels; ++k) {
    renderChannel(tap, Channel{data + k, channels}, (base + k) % tap.channels(), frames, ramp,
                  peaks);
  }
}

}  // namespace

void render(AudioBufferList input, AudioBufferList output, RenderState& state) noexcept {
  const TapInput tap(withoutLeading(input, state.skipInputBuffers));
  const float from = state.currentGain.load(std::memory_order_relaxed);
  // Read once: the next buffer starts where this one ends, also if the owner sets a new target
  // meanwhile.
  const float to = state.targetGain.load(std::memory_order_relaxed);
  RampPeaks peaks;
  std::size_t base = 0;
  for (const AudioBuffer& buffer : output) {
    if (buffer.mNumberChannels > 0 && buffer.mData) {
      renderBuffer(tap, buffer, base, from, to, peaks);
    }
    base += buffer.mNumberChannels;
  }
  raisePeak(state.peak, peaks.output);
  raisePeak(state.inputPeak, peaks.input);
  state.currentGain.store(to, std::memory_order_relaxed);
}

}  // namespace plemora
