#include "adapters/stage/stage_windows.h"

namespace plemora {

void StageSurface::clearBackground() {
  effect = nullptr;
  glass = nullptr;
}

std::shared_ptr<EffectView> StageSurface::showEffect(const EffectDescription& description) {
  glass = nullptr;
  effect = std::make_shared<ScriptedEffectView>(queue_, description);
  return effect;
}

std::shared_ptr<SystemGlassView> StageSurface::showSystemGlass() {
  effect = nullptr;
  glass = std::make_shared<ScriptedSystemGlass>();
  return glass;
}

void StageSurface::setLayer(std::shared_ptr<Layer> top) {
  layer = std::move(top);
  ++layersSet;
}

std::optional<int> StageWindow::screen() {
  std::optional<int> best;
  double most = 0;
  if (screens_ != nullptr) {
    for (const Screen& screen : screens_->screens().get()) {
      const Rect shared = screen.frame.intersection(frame());
      if (const double area = shared.width * shared.height; area > most) {
        most = area;
        best = screen.id;
      }
    }
  }
  return best;
}

std::unique_ptr<PanelWindow> StageWindows::makePanel(const PanelWindowOptions& options) {
  auto window = std::make_unique<StageWindow>(options, queue_, screens_);
  latest_ = window.get();
  return window;
}

}  // namespace plemora
