#pragma once

#include "platform/control_reload.h"

namespace plemora {

/// Counts. Main thread.
class ScriptedControlReload : public ControlReload {
 public:
  int reloads = 0;

  void reloadAllControls() override { ++reloads; }
};

}  // namespace plemora
