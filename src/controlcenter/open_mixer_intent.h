#pragma once

namespace plemora {

class DarwinNotifications;
class Workspace;

/// What the program's tile in Control Center runs when it is pressed. Main thread. It runs in the
/// process of the tile, not in the program's.
struct OpenMixerIntent {
  static constexpr const char* title = "Show Plemora";
  static constexpr bool isDiscoverable = false;
  /// Of the program that the tile belongs to.
  static constexpr const char* bundleID = "com.quorvane.mixer";
  /// What starts the program when it does not run.
  static constexpr const char* url = "com.quorvane.mixer://panel?from=control-center";

  /// Passes the press on to the program when it runs, and opens its URL when it does not.
  static void perform(Workspace& workspace, DarwinNotifications& notifications);
};

}  // namespace plemora
