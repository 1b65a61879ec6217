#include <benchmark/benchmark.h>

#include <cstring>
#include <exception>
#include <functional>
#include <string>
#include <vector>

#include "aligned_samples.h"
#include "audio/render/mix_kernel.h"
#include "audio/render/ramp_kernel.h"
#include "audio/render/render.h"
#include "server_volume.h"

// What the gain of a tap costs: nanoseconds per sample of one channel, everything in the first
// level cache, beside copying the same samples and beside the sound server's own volume control.

namespace plemora {
namespace {

using Use = AlignedSamples::Use;

constexpr std::size_t bufferSizes[] = {64, 256, 1024};

/// Fills one channel with something that is neither silent nor loud.
void fill(float* samples, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    samples[i] = static_cast<float>(i % 100) / 100.0f - 0.5f;
  }
}

/// An input and an output of that many samples in one piece.
struct Pair {
  explicit Pair(std::size_t count)
      : input(Use::input, 1, count),
        output(Use::output, 1, count),
        in(input.channel(0)),
        out(output.channel(0)) {
    fill(in, count);
  }

  AlignedSamples input;
  AlignedSamples output;
  float* in;
  float* out;
};

/// Times the work, which handles that many samples of one channel each time.
void measure(benchmark::State& state, std::size_t samples, const std::function<void()>& work) {
  for (auto _ : state) {
    work();
    benchmark::ClobberMemory();
  }
  const double handled = static_cast<double>(state.iterations()) * static_cast<double>(samples);
  state.counters["ns/sample"] =
      benchmark::Counter(handled * 1e-9, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void copy(benchmark::State& state, std::size_t frames) {
  const Pair pair(frames);
  measure(state, frames, [&] { std::memcpy(pair.out, pair.in, frames * sizeof(float)); });
}

void ramp(benchmark::State& state, const RampKernel& kernel, std::size_t frames, float step) {
  const Pair pair(frames);
  RampPeaks peaks;
  measure(state, frames, [&] {
    kernel.contiguous(pair.in, pair.out, frames, 0.25f, step, peaks);
    benchmark::DoNotOptimize(peaks);
  });
}

/// The whole routine over stereo; with a ramp the target moves at every buffer.
void renderStereo(benchmark::State& state, std::size_t frames, bool interleaved, bool ramps) {
  const auto bytes = static_cast<std::uint32_t>(frames * sizeof(float));
  const Pair stereo(2 * frames);
  AlignedSamples planarInput(Use::input, 2, frames);
  AlignedSamples planarOutput(Use::output, 2, frames);
  std::vector<AudioBuffer> input{{2, 2 * bytes, stereo.in}};
  std::vector<AudioBuffer> output{{2, 2 * bytes, stereo.out}};
  if (!interleaved) {
    input.clear();
    output.clear();
    for (const std::size_t channel : {0u, 1u}) {
      fill(planarInput.channel(channel), frames);
      input.push_back({1, bytes, planarInput.channel(channel)});
      output.push_back({1, bytes, planarOutput.channel(channel)});
    }
  }
  RenderState renderState(0.25f);
  float target = 0.25f;
  measure(state, 2 * frames, [&] {
    if (ramps) {
      target = 1.0f - target;
      renderState.targetGain.store(target, std::memory_order_relaxed);
    }
    render(input, output, renderState);
  });
}

void mix(benchmark::State& state, const MixKernel& kernel, std::size_t frames, bool ramped) {
  const Pair pair(frames);
  // Back and forth, so that the sums neither grow nor become denormal.
  float sign = 1.0f;
  measure(state, frames, [&] {
    sign = -sign;
    if (ramped) {
      kernel.addRamped(pair.out, pair.in, frames, sign, sign * 0.5f);
    } else if (sign > 0) {
      kernel.mixAdd(pair.out, pair.in, frames);
    } else {
      kernel.mixSubtract(pair.out, pair.in, frames);
    }
  });
}

void serverVolume(benchmark::State& state, std::size_t frames) {
  try {
    ServerVolume volume(frames, 0.25f);
    fill(volume.input(0), frames);
    fill(volume.input(1), frames);
    for (int cycle = 0; cycle < 100; ++cycle) {
      volume.process();
    }
    for (std::size_t i = 0; i < frames; ++i) {
      for (const std::size_t channel : {0u, 1u}) {
        if (volume.output(channel)[i] != 0.25f * volume.input(channel)[i]) {
          state.SkipWithError("the converter did not apply the volume");
          return;
        }
      }
    }
    measure(state, 2 * frames, [&] { volume.process(); });
  } catch (const std::exception& error) {
    state.SkipWithError(error.what());
  }
}

void add(const std::string& name, std::size_t frames,
         const std::function<void(benchmark::State&)>& body) {
  benchmark::RegisterBenchmark((name + "/" + std::to_string(frames)).c_str(), body);
}

void addAll() {
  for (const std::size_t frames : bufferSizes) {
    add("memcpy", frames, [=](benchmark::State& state) { copy(state, frames); });
  }
  for (const RampKernel* kernel : availableRampKernels()) {
    for (const std::size_t frames : bufferSizes) {
      const std::string name = std::string("kernel/") + kernel->name;
      add(name + "/constant", frames,
          [=](benchmark::State& state) { ramp(state, *kernel, frames, 0.0f); });
      add(name + "/ramp", frames,
          [=](benchmark::State& state) { ramp(state, *kernel, frames, 1e-4f); });
    }
  }
  for (const bool interleaved : {false, true}) {
    for (const bool ramps : {false, true}) {
      for (const std::size_t frames : bufferSizes) {
        add(std::string("render/") + (interleaved ? "interleaved" : "planar") +
                (ramps ? "/ramp" : "/constant"),
            frames,
            [=](benchmark::State& state) { renderStereo(state, frames, interleaved, ramps); });
      }
    }
  }
  for (const std::size_t frames : bufferSizes) {
    add("server_volume", frames, [=](benchmark::State& state) { serverVolume(state, frames); });
  }
  for (const MixKernel* kernel : availableMixKernels()) {
    for (const std::size_t frames : bufferSizes) {
      const std::string name = std::string("mix/") + kernel->name;
      add(name + "/add", frames,
          [=](benchmark::State& state) { mix(state, *kernel, frames, false); });
      add(name + "/add_ramped", frames,
          [=](benchmark::State& state) { mix(state, *kernel, frames, true); });
    }
  }
}

}  // namespace
}  // namespace plemora

int main(int argc, char** argv) {
  plemora::addAll();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
    return 1;
  }
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
}
