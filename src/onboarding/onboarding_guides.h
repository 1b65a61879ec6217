#pragma once

#include "onboarding/docked_helper.h"
#include "onboarding/menu_bar_pointer.h"
#include "onboarding/onboarding_controller.h"
#include "onboarding/ripple_panel.h"

namespace plemora {

/// What shows the user around beside the setup window.
struct OnboardingController::Guides {
  explicit Guides(const OnboardingServices& services)
      : ripple(services), pointer(services, ripple), helper(services, ripple) {}

  RipplePanel ripple;
  MenuBarPointer pointer;
  DockedHelper helper;
};

}  // namespace plemora
