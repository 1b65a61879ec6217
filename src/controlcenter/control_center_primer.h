#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "controlcenter/delayed_work.h"
#include "platform/accessibility.h"

namespace plemora {

class Clock;
class ControlCenterLocator;
class MainQueue;
class Workspace;

/// Enters and leaves Control Center's edit mode once, for the user: a control that is new in its
/// preferences shows only after that. Works through accessibility, in steps on the main queue, and
/// never blocks. Main thread; the services outlive it. Once it is gone nothing is called any more.
class ControlCenterPrimer {
 public:
  using Done = std::function<void(bool)>;

  /// What it means that Control Center does not run when priming begins.
  enum class Absence {
    final,     ///< there is nothing to prime
    restarts,  ///< it was ended a moment ago, and the system brings it back
  };

  // Seconds.
  static constexpr double pollInterval = 0.05;
  static constexpr double itemTimeout = 6.0;   ///< for the menu bar item to appear
  static constexpr double panelTimeout = 2.0;  ///< for the panel, after the item was pressed
  static constexpr double editTimeout = 3.0;   ///< for edit mode, after its button was pressed
  static constexpr double leaveDelay = 0.5;    ///< after the button was pressed to leave
  static constexpr double closeDelay = 0.8;    ///< before the item is pressed to close
  static constexpr double settleDelay = 1.2;   ///< before success is told; failure is told at once

  /// Deepest level of the tree that is searched for the edit button; windows are level 0.
  static constexpr int walkDepth = 5;

  ControlCenterPrimer(const ControlCenterLocator& locator, Accessibility& accessibility,
                      Workspace& workspace, MainQueue& queue, Clock& clock);
  ControlCenterPrimer(const ControlCenterPrimer&) = delete;
  ControlCenterPrimer& operator=(const ControlCenterPrimer&) = delete;

  /// Runs the whole chain and tells whether it came to its end. done is called once, on the main
  /// queue, never from inside this call. A call while the chain runs joins it: two at a time would
  /// open and close Control Center in each other's way.
  void prime(Done done, Absence absence = Absence::final);

  /// Checks now and then every pollInterval until the check gives true or that many seconds of the
  /// wall clock have passed, and passes its last result on, once.
  void waitUntil(double timeout, std::function<void(bool)> then, std::function<bool()> check);

  /// Control Center itself; null when it does not run.
  AccessibilityElementPointer control() const;
  /// The lowest button in its windows that has no identifier; null without one.
  AccessibilityElementPointer editButton() const;

 private:
  struct Wait;

  void openPanel();
  void enterEditMode();
  void leaveEditMode(const AccessibilityElementPointer& button);
  void giveUp();
  void finish(bool succeeded);
  void pressMenuItem();
  void poll(const std::shared_ptr<Wait>& wait);

  const ControlCenterLocator& locator_;
  Accessibility& accessibility_;
  Workspace& workspace_;
  Clock& clock_;
  DelayedWork steps_;
  std::vector<Done> waiting_;  // empty: no chain runs
};

}  // namespace plemora
