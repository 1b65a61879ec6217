#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "adapters/stage/memory_defaults.h"
#include "adapters/stage/scripted_appearance.h"
#include "adapters/stage/scripted_effect_layer.h"
#include "adapters/stage/scripted_effect_view.h"
#include "adapters/stage/scripted_system_glass.h"
#include "adapters/stage/scripted_system_info.h"
#include "adapters/stage/virtual_clock.h"
#include "adapters/stage/virtual_main_queue.h"
#include "skin/look/control_center_look.h"
#include "skin/look/glass_style.h"

namespace {

void expect(bool holds) {
  if (!holds) {
    std::abort();
  }
}

void expectFinite(const plemora::ScriptedEffectLayer& layer) {
  for (const auto& [path, value] : layer.values) {
    expect(std::isfinite(value));
  }
}

}  // namespace

// Whatever the settings say of the look: what reaches the system's layers are finite numbers, and
// the filter is there at most once.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace plemora;
  MemoryDefaults defaults;
  for (const char* key : {"detailStyle", "look", "release"}) {
    defaults.setString(key, std::string(reinterpret_cast<const char*>(data), size));
  }
  ScriptedSystemInfo system;
  ScriptedAppearance appearance;
  const ControlCenterLook look(defaults, system, appearance,
                               ControlCenterLook::ReleaseSource::settingElseSystem);
  expect(std::isfinite(look.tuning("track").value_or(0)));

  const GlassStyle style(look.style("detailStyle", builtInDetail));
  ScriptedSystemGlass glass;
  style.apply(glass);
  if (glass.tint) {
    expect(std::isfinite(glass.tint->red) && std::isfinite(glass.tint->green) &&
           std::isfinite(glass.tint->blue) && std::isfinite(glass.tint->alpha));
  }

  VirtualClock clock;
  VirtualMainQueue queue(clock);
  const auto effect = std::make_shared<ScriptedEffectView>(queue);
  effect->layers = ScriptedEffectLayer::systemTree();
  TunedBackdropView view(effect, queue);
  view.setTuning(style.tuning());
  for (int shown = 0; shown < 2; ++shown) {
    effect->moveToWindow(true);
    queue.drain();
  }
  ScriptedEffectLayer& backdrop = *effect->layers->find("backdrop");
  for (const char* name : {"backdrop", "fill", "tone", "desktop tint"}) {
    expectFinite(*effect->layers->find(name));
  }
  expect(backdrop.filters().size() <= 1);
  for (const EffectFilter& filter : backdrop.filters()) {
    for (const float number : filter.inputColorMatrix) {
      expect(std::isfinite(number));
    }
  }
  return 0;
}
