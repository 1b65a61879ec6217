#pragma once

#include <functional>
#include <memory>

#include "base/geometry.h"
#include "platform/clock.h"
#include "platform/display_link.h"
#include "platform/panel_window.h"

namespace plemora {

/// Moves and fades a window along the curve of a damped spring, which is evaluated anew for every
/// frame of the display, so that the window can be sent elsewhere in mid-flight without a jump.
/// Main thread.
class WindowSpring {
 public:
  /// The window is held weakly; links and clock outlive the spring.
  WindowSpring(std::weak_ptr<PanelWindow> window, DisplayLinks& links, Clock& clock);

  double response = 0.55;  ///< the spring's period in seconds
  double damping = 0.8;    ///< its damping ratio

  /// Starts from where the window is now. The completion runs once, when the run ends; one of an
  /// earlier run that has not ended never runs.
  void animate(const Rect& target, double alpha, std::function<void()> completion = {});

  /// Sends a running window elsewhere, on the same curve; places a resting one at once.
  void retarget(const Rect& frame);

  bool isRunning() const { return link_ != nullptr; }

  /// The share of the way that is done after so many seconds; passes 1 before it settles.
  double progress(double t) const;
  /// The frame at that share; 1 point wide and high at least.
  static Rect mix(const Rect& from, const Rect& to, double p);

 private:
  void tick();

  std::weak_ptr<PanelWindow> window_;
  DisplayLinks& links_;
  Clock& clock_;
  std::unique_ptr<DisplayLink> link_;
  Rect from_;
  double fromAlpha_ = 1;
  Rect target_;
  double targetAlpha_ = 1;
  double start_ = 0;
  std::function<void()> completion_;
};

}  // namespace plemora
