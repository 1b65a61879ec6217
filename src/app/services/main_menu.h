#pragma once

#include "platform/application.h"

namespace plemora {

/// The menu of the program while it has a Dock icon; its purpose is the shortcuts in text fields
/// and windows. Main thread.
class MainMenu {
 public:
  static void install(Application& application);
};

}  // namespace plemora
