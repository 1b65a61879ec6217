#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <ctime>
#include <memory>

#include "adapters/stage/scripted_hosted_view.h"
#include "adapters/stage/simulated_hal.h"
#include "devices/output_devices.h"
#include "skin/control_center_skin.h"
#include "skin/skin_ground.h"

// What one tick of the skin costs while it shows the module over two tiles, with 100 windows on
// screen and without the time that a window server or Control Center would take to answer. It is
// made on every frame of a display, which at 120 Hz lasts 8.33 ms.

namespace plemora {
namespace {

constexpr double frameTime = 1.0 / 120;  // seconds

struct ShownModule : SkinGround {
  SimulatedHal hal{main};
  OutputDevices outputs{hal, system};
  ControlCenterSkin skin{services(windows), outputs,
                         [](SkinState&) { return std::make_shared<ScriptedHostedView>(); }};

  ShownModule() : SkinGround(1 / frameTime) {
    launch();
    for (int i = 0; i < 99; ++i) {
      windowList.windows.push_back(
          {i, 1000 + i, "An Application With a Name", 0, Rect{10.0 * i, 40, 800, 600}, 1.0});
    }
    windowList.windows.push_back({99, pid, "Control Center", 26, Rect{1050, 0, 340, 600}, 1.0});
    const auto window = accessibility.add(accessibility.root(pid), "AXWindows");
    for (const double x : {1060.0, 1226.0}) {
      const auto tile = accessibility.add(window, "AXChildren",
                                          {{"AXIdentifier", "com.quorvane.mixer.controls"}});
      accessibility.setFrame(tile, {x, 100, 150, 64});
    }
    skin.start();
    queues.runAll();
    main.advance(0.4);
  }
};

void tick(benchmark::State& state, bool isScanning) {
  ShownModule world;
  if (isScanning) {
    world.main.advance(0.6);  // the next scan is begun, and stays under way
  }
  const std::clock_t start = std::clock();
  for (auto _ : state) {
    world.skin.tick();
  }
  const double seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
  char label[40];
  std::snprintf(label, sizeof label, "%.3f %% of a frame",
                100 * seconds / static_cast<double>(state.iterations()) / frameTime);
  state.SetLabel(label);
  if (!world.skin.isShowing() || world.queues.runAll() != (isScanning ? 1 : 0)) {
    state.SkipWithError("the module is not shown as it should be");
  }
}

void tickWithTilesKnown(benchmark::State& state) {
  tick(state, false);
}
void tickDuringAScan(benchmark::State& state) {
  tick(state, true);
}

BENCHMARK(tickWithTilesKnown)->Unit(benchmark::kMicrosecond);
BENCHMARK(tickDuringAScan)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace plemora

BENCHMARK_MAIN();
