#pragma once

#include <vector>

#include "platform/application.h"

namespace plemora {

/// This program on a desktop that a script describes. Main thread.
class ScriptedApplication : public Application {
 public:
  ActivationPolicy policy = ActivationPolicy::accessory;
  std::vector<ApplicationWindow> openWindows;
  std::vector<MainMenuSection> mainMenu;
  int policyChanges = 0;
  int terminations = 0;
  int activations = 0;

  ActivationPolicy activationPolicy() override { return policy; }
  void setActivationPolicy(ActivationPolicy value) override {
    policy = value;
    ++policyChanges;
  }
  void setMainMenu(const std::vector<MainMenuSection>& menu) override { mainMenu = menu; }
  std::vector<ApplicationWindow> windows() override { return openWindows; }
  void activate() override { ++activations; }
  void terminate() override { ++terminations; }
};

}  // namespace plemora
