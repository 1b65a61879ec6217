#pragma once

#include <memory>
#include <optional>

#include "base/geometry.h"
#include "menubar/window_animation.h"
#include "onboarding/onboarding_services.h"
#include "platform/panel_window.h"

namespace plemora {

/// Rings that spread from an icon of the menu bar, to be found at a glance. They take no clicks.
/// Shared by all who point at something: the last to speak decides. Main thread.
class RipplePanel {
 public:
  static constexpr double side = 64;  ///< points

  explicit RipplePanel(const OnboardingServices& services);
  ~RipplePanel();
  RipplePanel(const RipplePanel&) = delete;
  RipplePanel& operator=(const RipplePanel&) = delete;

  /// Around the middle of that frame (global, y up), and nowhere else. May be called again and
  /// again, to follow it.
  void show(const Rect& around);
  /// Fades them away.
  void hide();

  /// False from the moment that they begin to fade away.
  bool isShown() const { return shown_ && !isHiding_; }

 private:
  struct Shown {
    std::shared_ptr<HostedView> view;
    std::shared_ptr<PanelWindow> panel;
    WindowAnimation animation;
  };

  bool makeShown();
  void drop();

  const OnboardingServices services_;
  std::optional<Shown> shown_;
  bool isHiding_ = false;
};

}  // namespace plemora
