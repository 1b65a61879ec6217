#pragma once

#include <memory>

#include "base/geometry.h"
#include "platform/main_queue.h"
#include "platform/panel_window.h"
#include "skin/look/control_center_look.h"
#include "skin/look/rim_layer.h"
#include "skin/look/tuned_backdrop_view.h"

namespace plemora {

/// The window of the detail panel: a container of glass that moves about in a window which stands
/// still, and in it the module and the mixer's rows, which fade into each other at its top, each of
/// its own size. Frames are global, y up. Main thread.
class DetailPanel {
 public:
  static constexpr double moduleRadius = 23;  ///< of the corners
  static constexpr double panelRadius = 15;

  /// At first unseen: without alpha, and taking no clicks. Windows, queue and look outlive it.
  DetailPanel(Windows& windows, MainQueue& queue, const ControlCenterLook& look, int level,
              std::shared_ptr<HostedView> moduleView, std::shared_ptr<HostedView> detailView);
  ~DetailPanel();
  DetailPanel(const DetailPanel&) = delete;
  DetailPanel& operator=(const DetailPanel&) = delete;

  PanelWindow& window() { return *window_; }

  /// The ends of the way. The window covers both at least, and where the container is.
  void setFrames(const Rect& module, const Rect& panel);
  /// Makes the window no larger than that; what it covers without need swallows clicks.
  void fitWindow();

  /// In light appearance a veil grows with the panel, so that black is read on it over a dark
  /// desktop too.
  void setDark(bool isDark);

  /// Shows the container there. The progress is that of DetailMotion.
  void apply(const Rect& rect, double radius, double progress);

  const Rect& containerFrame() const { return container_; }
  double containerRadius() const { return radius_; }

 private:
  void setWindowFrame(const Rect& frame);
  void update();
  TunedBackdropView::Tuning glass(double grown) const;
  Rect inContainer(const Rect& frame) const;

  const std::shared_ptr<HostedView> moduleView_;
  const std::shared_ptr<HostedView> detailView_;
  const std::unique_ptr<PanelWindow> window_;
  const TunedBackdropView::Tuning moduleGlass_;  // that it begins with
  const TunedBackdropView::Tuning panelGlass_;
  std::unique_ptr<TunedBackdropView> backdrop_;  // goes before the surface that it tunes
  const std::shared_ptr<Layer> root_;
  const std::shared_ptr<Layer> veil_;
  RimLayer rim_;
  bool isDark_;
  Rect module_;
  Rect panel_;
  Rect container_;
  double radius_ = moduleRadius;
  double progress_ = 0;
};

}  // namespace plemora
