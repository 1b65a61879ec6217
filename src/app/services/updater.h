#pragma once

#include "platform/update_service.h"

namespace plemora {

/// The program's updates. Main thread. The controller outlives it.
class Updater {
 public:
  explicit Updater(UpdateService& controller) : controller_(controller) {}

  /// The one controller of the process; not started before start().
  UpdateService& controller() { return controller_; }

  /// Called once, at start-up. A failure is logged; the program runs on without updates.
  void start();

 private:
  UpdateService& controller_;
};

}  // namespace plemora
