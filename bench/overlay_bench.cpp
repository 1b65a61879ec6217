#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <QQuickWindow>
#include <memory>
#include <utility>

#include "glass/glass_view.h"
#include "main/stage/glass_windows.h"
#include "skin/skin_ground.h"
#include "skin/skin_overlay.h"
#include "skin/skin_state.h"
#include "striped_desktop.h"
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

struct World : SkinGround {
  World() : SkinGround(120) {}

  GlassWindows glassWindows{windows, main};
  SkinServices shown = services(glassWindows);
};

class Overlay {
 public:
  explicit Overlay(World& world)
      : world_(world),
        overlay_(
            world.shown, state_, [this](SkinState& state) { return makeView(state); },
            GlassStyle(world.look->style("skinStyle", builtInSkin)), 101) {
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
    scene_ = std::make_shared<ModuleScene>(state, *world_.look, world_.appearance);
    return content_ = std::make_shared<StageContent>(scene_, world_.clock, scale);
  }

  World& world_;
  const BackdropImage desktop_ =
      stripedDesktop({module.width + 2 * margin, module.height + 2 * margin}, scale);
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
