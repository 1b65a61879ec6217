#pragma once

#include <string>
#include <vector>

#include "platform/login_item.h"
#include "platform/system_info.h"
#include "platform/user_defaults.h"

namespace plemora {

/// Makes the program start at login, once: a user who takes the item away again is not overruled.
/// Main thread. The services outlive it.
class LaunchAtLogin {
 public:
  /// Bool in the settings: the login item has been made.
  static constexpr const char* key = "didRegisterLoginItem";

  /// installedUnder: what the path of an installed copy begins with, each with its slash at the
  /// end; a copy elsewhere (a disk image, a build folder) is never registered.
  LaunchAtLogin(UserDefaults& defaults, SystemInfo& system, LoginItem& item,
                std::vector<std::string> installedUnder = {"/Applications/"});

  /// Called at every start. A failure is logged, and tried again at the next start.
  void enableOnFirstRun();

 private:
  UserDefaults& defaults_;
  SystemInfo& system_;
  LoginItem& item_;
  std::vector<std::string> installedUnder_;
};

}  // namespace plemora
