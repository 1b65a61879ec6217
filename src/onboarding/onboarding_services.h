#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "menubar/menu_bar_services.h"

namespace plemora {

class Accessibility;
class ConsentService;
class ControlCenterLayout;
class ControlCenterLocator;
class FileDrag;
class HostedView;
class Preferences;
class SystemInfo;
class WindowList;
struct CalloutView;
struct HelperView;
struct SetupView;

/// What draws the windows of setup; what is drawn outlives the views. One that is empty, or that
/// gives null, is a window that cannot be shown now.
struct OnboardingContents {
  std::function<std::shared_ptr<HostedView>(SetupView&)> makeSetup;
  std::function<std::shared_ptr<HostedView>(HelperView&)> makeHelper;
  std::function<std::shared_ptr<HostedView>(CalloutView&)> makeCallout;
  std::function<std::shared_ptr<HostedView>()> makeRipple;
};

/// The world as setup needs it. All of it outlives setup.
struct OnboardingServices {
  MenuBarServices menuBar;
  ControlCenterLayout& layout;
  const ControlCenterLocator& locator;
  Preferences& preferences;
  Accessibility& accessibility;
  ConsentService& consent;
  WindowList& windowList;
  SystemInfo& system;
  FileDrag& fileDrag;
  OnboardingContents contents;
  std::int32_t ownPid = -1;  ///< process identifier of the program
};

}  // namespace plemora
