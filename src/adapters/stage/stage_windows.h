#pragma once

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "adapters/stage/scripted_effect_view.h"
#include "adapters/stage/scripted_system_glass.h"
#include "platform/panel_window.h"
#include "platform/screens.h"

namespace plemora {

/// What a window of the stage shows. Main thread.
class StageSurface : public PanelSurface {
 public:
  explicit StageSurface(MainQueue& queue) : queue_(queue) {}

  std::shared_ptr<ScriptedEffectView> effect;  ///< null: that is not the background
  std::shared_ptr<ScriptedSystemGlass> glass;  ///< null: that is not the background
  std::shared_ptr<HostedView> content;
  std::shared_ptr<Layer> layer;
  int layersSet = 0;
  bool flipped = false;

  void clearBackground() override;
  std::shared_ptr<EffectView> showEffect(const EffectDescription& description) override;
  std::shared_ptr<SystemGlassView> showSystemGlass() override;
  void setContent(std::shared_ptr<HostedView> view) override { content = std::move(view); }
  void setLayer(std::shared_ptr<Layer> top) override;
  bool isFlipped() override { return flipped; }

 private:
  MainQueue& queue_;
};

/// A window that keeps what was done to it. Main thread.
class StageWindow : public PanelWindow {
 public:
  /// Screens: null when the window is on none.
  StageWindow(PanelWindowOptions options, MainQueue& queue, Screens* screens)
      : options(std::move(options)), shown(queue), screens_(screens) {}

  const PanelWindowOptions options;
  StageSurface shown;
  std::vector<Rect> frames;         ///< every one set, in order
  std::vector<double> alphas;       ///< every one set, in order
  std::vector<WindowOrder> orders;  ///< every one asked for, in order

  Rect frame() override { return frames.empty() ? Rect{} : frames.back(); }
  void setFrame(const Rect& frame) override { frames.push_back(frame); }
  double alpha() override { return alphas.empty() ? 1 : alphas.back(); }
  void setAlpha(double alpha) override { alphas.push_back(alpha); }
  void order(WindowOrder order) override { orders.push_back(order); }
  bool isOnScreen() override { return !orders.empty() && orders.back() != WindowOrder::out; }
  std::optional<int> screen() override;
  PanelSurface& surface() override { return shown; }

 private:
  Screens* screens_;
};

/// Makes windows of the stage. Main thread; queue and screens outlive the windows.
class StageWindows : public Windows {
 public:
  explicit StageWindows(MainQueue& queue, Screens* screens = nullptr)
      : queue_(queue), screens_(screens) {}

  [[nodiscard]] std::unique_ptr<PanelWindow> makePanel(const PanelWindowOptions& options) override;

  /// The one made last, for as long as its owner keeps it; null before the first.
  StageWindow* latest() const { return latest_; }

 private:
  MainQueue& queue_;
  Screens* screens_;
  StageWindow* latest_ = nullptr;
};

}  // namespace plemora
