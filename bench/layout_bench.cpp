#include <benchmark/benchmark.h>

#include <string>

#include "adapters/stage/fresh_layout.h"
#include "adapters/stage/memory_files.h"
#include "adapters/stage/memory_preferences.h"
#include "adapters/stage/scripted_workspace.h"
#include "adapters/stage/virtual_clock.h"
#include "controlcenter/control_center_layout.h"
#include "controlcenter/layout_elements.h"
#include "controlcenter/layout_record.h"

// What it costs to take Sound out of Control Center and to put it back, against the number of
// tiles: reading, changing and writing, without the disk. It happens once, when somebody asks for
// it.

namespace plemora {
namespace {

using Layout = ControlCenterLayout::Layout;

/// A fresh layout with as many tiles as that.
StoredLayout layoutOf(std::int64_t tiles) {
  const FreshLayout fresh = freshLayout();
  Layout layout = Layout::decode({fresh.controls, fresh.boxes});
  const PropertyList entry = layout.modules.front();
  for (auto i = static_cast<std::int64_t>(layout.elements.size()); i < tiles; ++i) {
    const std::string id = "tile " + std::to_string(i);
    PropertyList module = entry;
    PropertyList identifier;
    identifier.setMember("rawValue", PropertyList::string(id));
    module.setMember("identifier", identifier);
    layout.modules.push_back(module);
    layout.elements.push_back(makeElement(id, i % 4, 10 + i / 4, "square1x1"));
  }
  return layout.encode();
}

void readAndWrite(benchmark::State& state) {
  const StoredLayout stored = layoutOf(state.range(0));
  for (auto _ : state) {
    benchmark::DoNotOptimize(Layout::decode(stored).encode());
  }
  state.SetBytesProcessed(state.iterations() *
                          static_cast<std::int64_t>(stored.boxes.size() + stored.controls.size()));
}

void replaceAndUndo(benchmark::State& state, void (*undo)(ControlCenterLayout&)) {
  MemoryPreferences preferences;
  MemoryFiles files;
  VirtualClock clock;
  ScriptedWorkspace workspace;
  ControlCenterLayout layout(preferences, files, clock, workspace);
  writeStoredLayout(preferences, layoutOf(state.range(0)), StoreOrder::controlsFirst);
  for (auto _ : state) {
    layout.replaceSound();
    undo(layout);
  }
}

void restore(ControlCenterLayout& layout) {
  layout.restore();
}

void putBack(ControlCenterLayout& layout) {
  layout.putSoundBack(true);
}

BENCHMARK(readAndWrite)->Arg(15)->Arg(200)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(replaceAndUndo, restore, restore)
    ->Arg(15)
    ->Arg(200)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(replaceAndUndo, putBack, putBack)
    ->Arg(15)
    ->Arg(200)
    ->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace plemora

BENCHMARK_MAIN();
