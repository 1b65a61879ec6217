#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "base/geometry.h"
#include "onboarding/helper_view.h"
#include "onboarding/onboarding_services.h"
#include "platform/input_events.h"
#include "platform/main_queue.h"

namespace plemora {

class RipplePanel;

/// Shows where the program is, once setup is over: a callout below its icon in the menu bar, and
/// rings around the icon. It goes away at the first click anywhere, or by itself. Main thread.
class MenuBarPointer {
 public:
  /// The ripple outlives it.
  MenuBarPointer(const OnboardingServices& services, RipplePanel& ripple);
  ~MenuBarPointer();
  MenuBarPointer(const MenuBarPointer&) = delete;
  MenuBarPointer& operator=(const MenuBarPointer&) = delete;

  /// Points at an icon of that frame (global, y up), and no longer at an earlier one. onOpen is
  /// called when the callout's button is used; the callout goes then. Where the callout cannot be
  /// shown, there are the rings alone.
  void show(const Rect& below, std::function<void()> onOpen);
  /// Fades both away.
  void hide();

  /// False from the moment that it begins to fade away.
  bool isShown() const { return !monitors_.empty(); }

 private:
  struct Callout;

  void showCallout(const Rect& below, std::function<void()> onOpen);
  void dropCallout();

  const OnboardingServices services_;
  RipplePanel& ripple_;
  std::unique_ptr<Callout> callout_;  // also while it fades
  std::vector<std::unique_ptr<EventMonitor>> monitors_;
  Timer autoHide_;
  Timer release_;  // waits for the button before a faded callout goes
};

}  // namespace plemora
