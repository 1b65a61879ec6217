#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace plemora {

/// Where the desktop keeps what the workspace reads. Tests point it into a folder of their own.
struct DesktopPaths {
  std::filesystem::path processes = "/proc";
  /// Folders of desktop entries, the most important first.
  std::vector<std::filesystem::path> applications;
  /// Folders of the search path for programs, in its order.
  std::vector<std::filesystem::path> programs;
  /// Folders that belong to no one app though programs lie in them or below them.
  std::vector<std::filesystem::path> shared;
  std::filesystem::path home;
  std::string locale;  ///< for messages, such as "de_AT.UTF-8"

  /// From HOME, PATH, XDG_DATA_HOME, XDG_DATA_DIRS, LC_ALL, LC_MESSAGES and LANG; the export
  /// folders of Flatpak and Snap are there even when the session does not name them.
  static DesktopPaths fromEnvironment();
};

}  // namespace plemora
