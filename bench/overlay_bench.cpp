#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <QQuickWindow>
#include <memory>
#include <utility>

#include "adapters/stage/manual_serial_queue.h"
#include "adapters/stage/memory_defaults.h"
#include "adapters/stage/memory_files.h"
#include "adapters/stage/memory_preferences.h"
#include "adapters/stage/memory_resources.h"
#include "adapters/stage/scripted_accessibility.h"
#include "adapters/stage/scripted_appearance.h"
#include "adapters/stage/scripted_control_reload.h"
#include "adapters/stage/scripted_input_events.h"
#include "adapters/stage/scripted_screens.h"
#include "adapters/stage/scripted_system_info.h"
#include "adapters/stage/scripted_window_list.h"
#include "adapters/stage/scripted_workspace.h"
#include "adapters/stage/stage_windows.h"
#include "adapters/stage/virtual_clock.h"
#include "adapters/stage/virtual_display_links.h"
#include "adapters/stage/virtual_main_queue.h"
#include "controlcenter/control_center_locator.h"
#include "glass/glass_view.h"
#include "main/stage/glass_windows.h"
#include "skin/look/control_center_look.h"
#include "skin/skin_overlay.h"
#include "skin/skin_state.h"
#include "views/module_scene.h"

// What it costs to draw the overlay over a module of two tiles, at two pixels a point, in the
// built-in style of 26.4: its first picture (glass, layers and content, whose components have been
// loaded), and the next ones while the slider moves, the light under the pointer fades in, or what
// lies behind has changed.

namespace plemora {
namespace {

constexpr double scale = 2;
constexpr Size module{316, 64};
constexpr double margin = 60;  // of the desktop around it

BackdropImage desktop() {
  BackdropImage image;
  image.scale = scale;
  image.width = static_cast<int>((module.width + 2 * margin) * scale);
  image.height = static_cast<int>((module.height + 2 * margin) * scale);
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) {
      const auto level = static_cast<unsigned>((x * 3 + y / 7 * 40) % 256);
      image.pixels.push_back(0xff000000U | level << 16 | (255 - level) << 8 |
                             static_cast<unsigned>(y % 256));
    }
  }
  return image;
}

struct World {
  VirtualClock clock;
  VirtualMainQueue main{clock};
  ScriptedScreens screens;
  ScriptedWindowList windowList;
  ScriptedAccessibility accessibility;
  MemoryPreferences preferences;
  ScriptedWorkspace workspace;
  ControlCenterLocator locator{screens, windowList, accessibility, preferences, workspace};
  StageWindows stageWindows{main, screens};
  GlassWindows windows{stageWindows, main};
  VirtualDisplayLinks links{main, 120};
  StageQueueFactory queues;
  ScriptedInputEvents input;
  ScriptedControlReload reload;
  MemoryDefaults defaults;
  MemoryFiles files;
  MemoryResources resources;
  ScriptedSystemInfo system;
  ScriptedAppearance appearance;
  ControlCenterLook look{defaults, system, appearance};
};

class Overlay {
 public:
  explicit Overlay(World& world)
      : world_(world),
        overlay_(
            {world.main, world.queues, world.clock, world.links, world.screens, world.windows,
             world.input, world.workspace, world.accessibility, world.reload, world.defaults,
             world.files, world.resources, world.look, world.locator},
            state_, [this](SkinState& state) { return makeView(state); },
            GlassStyle(world.look.style("skinStyle", builtInSkin)), 101) {
    state_.isWide.set(true);
    state_.volume.set(0.5F);
    scene_->item();
    overlay_.setFrame({100, 100, module.width, module.height});
    overlay_.updateSeam(module, {{0, 0, 150, 64}, {166, 0, 150, 64}});
    overlay_.tuneSeamForAppearance();
    overlay_.panel().order(WindowOrder::frontRegardless);
    glass().setSize(module);
    glass().setScale(scale);
    glass().setTintStrength(0);
    showDesktop();
    world_.main.drain();
  }

  void showDesktop() {
    glass().setBackdrop(desktop_,
                        {-margin, -margin, module.width + 2 * margin, module.height + 2 * margin});
  }
  void moveSlider() {
    state_.volume.set(state_.volume.get() > 0.9F ? 0.1F : state_.volume.get() + 0.01F);
  }
  void fadeGlow() {
    overlay_.lightUp(state_.isHovering.get() ? Rect{0, 0, 150, 64} : Rect{166, 0, 150, 64});
    state_.isHovering.changeSilently([](bool& isHovering) { isHovering = !isHovering; });
    world_.main.advance(0.1);  // of the 0.15 that it takes
    overlay_.animate();
  }
  void render() {
    benchmark::DoNotOptimize(glass().render().row(0));
    benchmark::DoNotOptimize(content_->picture(module, scale).constBits());
  }
  /// Of glass and content.
  std::pair<Raster, QImage> picture() {
    render();
    return {glass().render(), content_->picture(module, scale).copy()};
  }
  GlassView& glass() { return static_cast<GlassWindow&>(overlay_.panel()).glass(); }

 private:
  std::shared_ptr<HostedView> makeView(SkinState& state) {
    scene_ = std::make_shared<ModuleScene>(state, world_.look, world_.appearance);
    return content_ = std::make_shared<StageContent>(scene_, world_.clock, scale);
  }

  World& world_;
  const BackdropImage desktop_ = desktop();
  SkinState state_;
  std::shared_ptr<ModuleScene> scene_;
  std::shared_ptr<StageContent> content_;
  SkinOverlay overlay_;
};

void firstPicture(benchmark::State& state) {
  World world;
  std::unique_ptr<Overlay> overlay;
  for (auto _ : state) {
    state.PauseTiming();
    overlay.reset();
    overlay = std::make_unique<Overlay>(world);
    state.ResumeTiming();
    overlay->render();
  }
}

/// Each picture after such a change, which blurs what lies behind or does not.
void nextPicture(benchmark::State& state, void (Overlay::*change)(), bool blurs) {
  World world;
  Overlay overlay(world);
  const auto first = overlay.picture();
  const int before = overlay.glass().blurCount();
  (overlay.*change)();
  if (!blurs && overlay.picture() == first) {
    state.SkipWithError("it shows nothing of the change");
  }
  for (auto _ : state) {
    (overlay.*change)();
    overlay.render();
  }
  if ((overlay.glass().blurCount() > before) != blurs) {
    state.SkipWithError("it does not blur when it should");
  }
}

void registerAll() {
  const auto unit = benchmark::kMillisecond;
  benchmark::RegisterBenchmark("first picture, symbols not drawn yet", firstPicture)
      ->Iterations(1)
      ->Unit(unit);
  benchmark::RegisterBenchmark("first picture", firstPicture)->Iterations(40)->Unit(unit);
  const auto add = [&](const char* name, void (Overlay::*change)(), bool blurs) {
    benchmark::RegisterBenchmark(name, [change, blurs](benchmark::State& state) {
      nextPicture(state, change, blurs);
    })->Unit(unit);
  };
  add("slider moves", &Overlay::moveSlider, false);
  add("light moves", &Overlay::fadeGlow, false);
  add("what is behind changes", &Overlay::showDesktop, true);
}

}  // namespace
}  // namespace plemora

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
  const QGuiApplication application(argc, argv);
  plemora::registerAll();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
    return 1;
  }
  benchmark::RunSpecifiedBenchmarks();
}
