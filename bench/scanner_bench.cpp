#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>
#include <vector>

#include "adapters/stage/scripted_workspace.h"
#include "adapters/stage/simulated_hal.h"
#include "adapters/stage/virtual_clock.h"
#include "adapters/stage/virtual_main_queue.h"
#include "audio/audio_app_scanner.h"

// What one scan costs against the number of audio processes, on the simulated hardware layer: the
// rules and the reads by address, without the time that a sound server would take to answer.

namespace plemora {
namespace {

enum class Owners {
  themselves,   // every process is a regular app
  responsible,  // ten processes to an app, which answers for them
  prefix,       // ten processes to an app, found by its bundle identifier among the running ones
};

struct Scene {
  static constexpr std::int32_t ownPid = 1'000'000;

  VirtualClock clock;
  VirtualMainQueue main{clock};
  SimulatedHal hal{main};
  ScriptedWorkspace workspace;
  AudioAppScanner scanner{hal, main, workspace, ownPid};
  std::vector<AudioObjectID> processes;

  Scene(int count, Owners owners) {
    SimulatedDevice facts;
    facts.uid = "speakers";
    const AudioObjectID device = hal.addDevice(facts);
    for (int i = 0; i < count; ++i) {
      const std::int32_t pid = 1000 + i;
      const int group = i / 10;
      const std::string app = "org.example.app" + std::to_string(group);
      if (owners == Owners::themselves) {
        launch(pid, app + "." + std::to_string(i), ActivationPolicy::regular);
      } else {
        if (i % 10 == 0) {
          launch(100'000 + group, app, ActivationPolicy::regular);
        }
        launch(pid, app + ".helper" + std::to_string(i), ActivationPolicy::prohibited);
      }
      if (owners == Owners::responsible) {
        workspace.setResponsiblePid(pid, 100'000 + group);
      }
      SimulatedProcess process;
      process.pid = pid;
      process.devices = {device};
      processes.push_back(hal.addProcess(process));
    }
    scanner.scan();
  }

  void launch(std::int32_t pid, const std::string& bundleID, ActivationPolicy policy) {
    RunningApplication application;
    application.pid = pid;
    application.bundleID = bundleID;
    application.activationPolicy = policy;
    workspace.launch(application);
  }
};

void scan(benchmark::State& state, Owners owners) {
  Scene scene(static_cast<int>(state.range(0)), owners);
  for (auto _ : state) {
    scene.scanner.scan();
  }
  state.counters["per process"] = benchmark::Counter(
      static_cast<double>(state.range(0)),
      benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

// A storm of notifications and the one scan that it costs.
void storm(benchmark::State& state) {
  Scene scene(static_cast<int>(state.range(0)), Owners::themselves);
  for (auto _ : state) {
    for (const AudioObjectID process : scene.processes) {
      scene.hal.notify(process,
                       {kAudioProcessPropertyIsRunningOutput, kAudioObjectPropertyScopeGlobal});
    }
    scene.main.advance(AudioAppScanner::scanDelay);
  }
}

BENCHMARK_CAPTURE(scan, themselves, Owners::themselves)->RangeMultiplier(10)->Range(10, 1000);
BENCHMARK_CAPTURE(scan, responsible, Owners::responsible)->RangeMultiplier(10)->Range(10, 1000);
BENCHMARK_CAPTURE(scan, prefix, Owners::prefix)->RangeMultiplier(10)->Range(10, 1000);
BENCHMARK(storm)->RangeMultiplier(10)->Range(10, 1000);

}  // namespace
}  // namespace plemora

BENCHMARK_MAIN();
