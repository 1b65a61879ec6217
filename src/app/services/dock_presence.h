#pragma once

#include <deque>

#include "platform/application.h"
#include "platform/main_queue.h"

namespace plemora {

/// Takes the Dock icon away once no window needs it any more; the windows that need it bring it
/// themselves. Main thread. The services outlive it.
class DockPresence {
 public:
  /// Identifier of the windows that keep the Dock icon while they are visible.
  static constexpr const char* windowID = "dock-window";

  DockPresence(Application& application, MainQueue& queue)
      : application_(application), queue_(queue) {}

  /// Called when such a window closes; looks a little later, when it is gone from the screen.
  void update();

 private:
  void look();

  Application& application_;
  MainQueue& queue_;
  std::deque<Timer> looks_;  // in the order in which they run
};

}  // namespace plemora
