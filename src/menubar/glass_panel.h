#pragma once

#include <memory>
#include <optional>

#include "base/published.h"
#include "platform/panel_window.h"
#include "skin/look/glass_style.h"
#include "skin/look/rim_layer.h"

namespace plemora {

/// Whether a panel is on screen.
struct PanelVisibility {
  Published<bool> isVisible{false};
};

/// Lets a view's animations and timers run only while its panel is on screen. Main thread.
class VisibilityGate {
 public:
  /// The visibility outlives the gate.
  VisibilityGate(PanelVisibility& visibility, std::shared_ptr<HostedView> content);

 private:
  Subscription subscription_;
};

/// A borderless window of glass: tells its content whether it is on screen, and keeps its rim in
/// step with its size. Main thread.
class GlassPanel : public PanelWindow {
 public:
  /// The visibility and the queue outlive it. The content is shown once make() has been called.
  GlassPanel(Windows& windows, const PanelWindowOptions& options,
             std::shared_ptr<HostedView> hostingView, PanelVisibility& visibility,
             MainQueue& mainQueue);
  ~GlassPanel() override;

  const std::shared_ptr<HostedView>& hostingView() const { return hostingView_; }
  bool canBecomeKey() const { return acceptsKey_; }
  bool canBecomeMain() const { return false; }
  PanelVisibility& visibility() { return visibility_; }

  /// Puts the style's background and the hosting view on top of it into the window.
  void make(double cornerRadius, const GlassStyle& style);

  /// Draws a rim around the glass, at that place among its layers.
  void setRim(std::unique_ptr<RimLayer> rim, double rimRadius, double zPosition);

  void orderFront() { order(WindowOrder::front); }
  void makeKeyAndOrderFront() { order(WindowOrder::keyAndFront); }
  void orderFrontRegardless() { order(WindowOrder::frontRegardless); }
  void orderOut() { order(WindowOrder::out); }

  Rect frame() override { return window_->frame(); }
  void setFrame(const Rect& frame) override;
  double alpha() override { return window_->alpha(); }
  void setAlpha(double alpha) override { window_->setAlpha(alpha); }
  void setLevel(int level) override { window_->setLevel(level); }
  int level() override { return window_->level(); }
  void setIgnoresMouseEvents(bool ignores) override { window_->setIgnoresMouseEvents(ignores); }
  void order(WindowOrder order) override;
  bool isOnScreen() override { return window_->isOnScreen(); }
  std::optional<int> screen() override { return window_->screen(); }
  PanelSurface& surface() override { return window_->surface(); }

 private:
  void updateRim();

  const std::shared_ptr<HostedView> hostingView_;
  const bool acceptsKey_;
  PanelVisibility& visibility_;
  MainQueue& mainQueue_;
  std::unique_ptr<RimLayer> rim_;
  double rimRadius_ = 0;
  std::optional<Size> rimSize_;  // that the rim was last fitted to
  const std::unique_ptr<PanelWindow> window_;
  std::unique_ptr<TunedBackdropView> backdrop_;  // goes before the surface that it tunes
};

}  // namespace plemora
