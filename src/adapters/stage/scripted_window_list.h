#pragma once

#include <vector>

#include "platform/window_list.h"

namespace plemora {

/// The windows on screen as a script has them, front to back. Main thread.
class ScriptedWindowList : public WindowList {
 public:
  std::vector<WindowInfo> windows;
  bool isSilent = false;  ///< the window server does not answer
  int reads = 0;

  std::vector<WindowInfo> onScreenWindows() override {
    ++reads;
    return isSilent ? std::vector<WindowInfo>() : windows;
  }
};

}  // namespace plemora
