#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <ctime>
#include <string>
#include <vector>

#include "adapters/stage/fresh_layout.h"
#include "adapters/stage/memory_preferences.h"
#include "adapters/stage/scripted_accessibility.h"
#include "adapters/stage/scripted_screens.h"
#include "adapters/stage/scripted_window_list.h"
#include "adapters/stage/scripted_workspace.h"
#include "controlcenter/control_center_locator.h"

// What the locator's queries cost with 100 windows on screen, without the time that a window server
// or another application would take to answer. They are made on every frame of a display, which
// at 120 Hz lasts 8.33 ms.

namespace plemora {
namespace {

constexpr double frameTime = 1.0 / 120;  // seconds

struct Desktop {
  static constexpr std::int32_t pid = 300;

  ScriptedScreens screens;
  ScriptedWindowList windowList;
  ScriptedAccessibility accessibility;
  MemoryPreferences preferences;
  ScriptedWorkspace workspace;
  ControlCenterLocator locator{screens, windowList, accessibility, preferences, workspace};

  /// 100 windows: 20 items of the menu bar, of which Control Center's come last, then the windows
  /// of applications, and behind them all Control Center's panel and what it dims the display with.
  explicit Desktop(bool hasTrust) {
    for (int i = 0; i < 18; ++i) {
      add("Some Menu Extra", {20.0 * i, 0, 20, 24}, statusWindowLevel);
    }
    add("Control Center", {1180, 0, 30, 24}, statusWindowLevel);
    add("Control Center", {1228, 0, 30, 24}, statusWindowLevel);
    for (int i = 0; i < 78; ++i) {
      add("An Application With a Name", {10.0 * i, 40, 800, 600}, 0);
    }
    add("Control Center", {1050, 0, 340, 600}, 26);
    add("Control Center", {0, 0, 1440, 900}, 26);

    for (int i = 0; i < 60; ++i) {
      launch(1000 + i, "org.example.app" + std::to_string(i));
    }
    launch(pid, ControlCenterLocator::domain);
    const auto bar = accessibility.make();
    accessibility.set(accessibility.root(pid), "AXExtrasMenuBar", bar);
    for (int i = 0; i < 10; ++i) {
      accessibility.add(bar, "AXChildren", {{"AXIdentifier", "com.apple.menuextra.other"}});
    }
    const auto item = accessibility.add(bar, "AXChildren",
                                        {{"AXIdentifier", "com.apple.menuextra.controlcenter"}});
    accessibility.setFrame(item, {1230, 0, 26, 24});
    accessibility.setTrusted(hasTrust);
    storeFreshLayout(preferences);
  }

  void add(const std::string& owner, const Rect& bounds, int layer) {
    const auto number = static_cast<std::int64_t>(windowList.windows.size()) + 1;
    windowList.windows.push_back({number, pid, owner, layer, bounds, 1.0});
  }

  void launch(std::int32_t application, const std::string& bundleID) {
    RunningApplication running;
    running.pid = application;
    running.bundleID = bundleID;
    running.localizedName = bundleID;
    workspace.launch(running);
  }
};

template <typename Query>
void measure(benchmark::State& state, bool hasTrust, Query query) {
  Desktop desktop(hasTrust);
  const std::clock_t start = std::clock();
  for (auto _ : state) {
    benchmark::DoNotOptimize(query(desktop.locator));
  }
  const double seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
  char label[40];
  std::snprintf(label, sizeof label, "%.2f %% of a frame",
                100 * seconds / static_cast<double>(state.iterations()) / frameTime);
  state.SetLabel(label);
}

using Locator = ControlCenterLocator;

void panelWindow(benchmark::State& state) {
  measure(state, true, [](const Locator& locator) { return locator.panelWindow(); });
}
void isEditing(benchmark::State& state) {
  measure(state, true, [](const Locator& locator) { return locator.isEditing(); });
}
void menuItem(benchmark::State& state) {
  measure(state, true, [](const Locator& locator) { return locator.menuItem(); });
}
void iconFrameTrusted(benchmark::State& state) {
  measure(state, true, [](const Locator& locator) { return locator.iconFrame(); });
}
void iconFrameUntrusted(benchmark::State& state) {
  measure(state, false, [](const Locator& locator) { return locator.iconFrame(); });
}
void isMixerControlAdded(benchmark::State& state) {
  measure(state, true, [](const Locator& locator) { return locator.isMixerControlAdded(); });
}

BENCHMARK(panelWindow)->Unit(benchmark::kMicrosecond);
BENCHMARK(isEditing)->Unit(benchmark::kMicrosecond);
BENCHMARK(menuItem)->Unit(benchmark::kMicrosecond);
BENCHMARK(iconFrameTrusted)->Unit(benchmark::kMicrosecond);
BENCHMARK(iconFrameUntrusted)->Unit(benchmark::kMicrosecond);
BENCHMARK(isMixerControlAdded)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace plemora

BENCHMARK_MAIN();
