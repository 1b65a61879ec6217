#pragma once

namespace plemora {

/// Has the system ask the program's controls anew for what they show (WidgetKit on a Mac). Main
/// thread.
class ControlReload {
 public:
  virtual ~ControlReload() = default;

  virtual void reloadAllControls() = 0;
};

}  // namespace plemora
