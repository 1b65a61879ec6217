#pragma once

#include <string>
#include <vector>

#include "platform/workspace.h"

namespace plemora {

/// Modifier keys of a menu item; the values are those of NSEvent.ModifierFlags.
inline constexpr unsigned shiftModifier = 0x20000;
inline constexpr unsigned commandModifier = 0x100000;

/// One item of the main menu. The action is a selector that goes to the first responder.
struct MainMenuItem {
  std::string title;  ///< empty: a separator
  std::string action;
  std::string keyEquivalent;
  unsigned modifiers = commandModifier;

  bool operator==(const MainMenuItem&) const = default;
};

struct MainMenuSection {
  std::string title;
  std::vector<MainMenuItem> items;

  bool operator==(const MainMenuSection&) const = default;
};

struct ApplicationWindow {
  std::string identifier;
  bool isVisible = false;
};

/// This program as an application of the desktop. Main thread.
class Application {
 public:
  virtual ~Application() = default;

  virtual ActivationPolicy activationPolicy() = 0;
  virtual void setActivationPolicy(ActivationPolicy policy) = 0;
  virtual void setMainMenu(const std::vector<MainMenuSection>& menu) = 0;
  virtual std::vector<ApplicationWindow> windows() = 0;
  /// Brings the program and its ordinary windows before everybody else's, whatever has the keys.
  virtual void activate() = 0;
  /// Ends the program the orderly way, later in this turn of the main loop or in the next.
  virtual void terminate() = 0;
};

}  // namespace plemora
