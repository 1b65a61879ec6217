#pragma once

#include <vector>

#include "platform/application.h"

namespace plemora {

/// This program as the toolkit knows it. A window's identifier is its object name.
///
/// There is no menu bar of an application here, and the shortcuts of editing that the main menu
/// brings on a Mac are the text fields' own, so the menu is dropped. The
/// policy is remembered too; on this desktop a program shows in task lists by its windows.
class QtApplication : public Application {
 public:
  ActivationPolicy activationPolicy() override { return policy_; }
  void setActivationPolicy(ActivationPolicy policy) override { policy_ = policy; }
  void setMainMenu(const std::vector<MainMenuSection>&) override {}
  std::vector<ApplicationWindow> windows() override;
  void activate() override;
  void terminate() override;

 private:
  ActivationPolicy policy_ = ActivationPolicy::accessory;
};

}  // namespace plemora
