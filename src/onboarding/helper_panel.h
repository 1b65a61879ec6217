#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "base/geometry.h"
#include "menubar/glass_panel.h"
#include "menubar/layout_helpers.h"
#include "menubar/window_animation.h"
#include "menubar/window_spring.h"
#include "onboarding/onboarding_services.h"

namespace plemora {

/// The docked helper's window of glass, and how it moves. Frames are global, y up. Main thread.
class HelperPanel {
 public:
  static constexpr int floatingLevel = 3;  ///< NSFloatingWindowLevel

  /// Null: there is no content for it. The view outlives it; the height is what the content wants
  /// from then on, in points.
  static std::unique_ptr<HelperPanel> make(const OnboardingServices& services, HelperView& view,
                                           std::function<void(double height)> heightChanged);
  ~HelperPanel();
  HelperPanel(const HelperPanel&) = delete;
  HelperPanel& operator=(const HelperPanel&) = delete;

  GlassPanel& window() { return *panel_; }
  /// Where it is, or is going.
  const Rect& target() const { return target_; }
  /// False while it is hidden, or faded away.
  bool isSeen() const { return panel_->isOnScreen() && !isFaded_; }
  double fittingHeight() { return panel_->hostingView()->fittingHeight(); }

  /// Comes to the front there at that level, at rest and without alpha. No completion of before
  /// runs.
  void appear(const Rect& frame, int level);
  void spring(const Rect& frame, double alpha, std::function<void()> completion = {});
  /// A faster spring, without a swing, to no alpha.
  void vanish(const Rect& frame, std::function<void()> completion);
  /// Follows: see WindowSpring::retarget().
  void retarget(const Rect& frame);
  /// As retarget() while it is on its way; from rest it springs there.
  void follow(const Rect& frame);
  /// Fades it away where it is or is going, or back; faded it takes no clicks.
  void fade(bool isFaded);

 private:
  HelperPanel(const OnboardingServices& services, const std::shared_ptr<HostedView>& content,
              std::function<void(double height)> heightChanged);

  DisplayLinks& links_;
  Clock& clock_;
  PanelVisibility visibility_;
  const std::shared_ptr<GlassPanel> panel_;
  const VisibilityGate gate_;
  std::optional<WindowSpring> spring_;
  WindowAnimation fade_;
  const HeightReader heightReader_;
  Rect target_;
  bool isFaded_ = false;
};

}  // namespace plemora
