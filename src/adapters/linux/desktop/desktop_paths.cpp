#include "adapters/linux/desktop/desktop_paths.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace plemora {

namespace {

namespace fs = std::filesystem;

std::string environment(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

/// Absolute paths of a list with colons; the fallback when the list is empty.
std::vector<fs::path> pathList(std::string_view list, std::string_view fallback) {
  if (list.empty()) {
    list = fallback;
  }
  std::vector<fs::path> paths;
  while (!list.empty()) {
    const std::size_t end = std::min(list.find(':'), list.size());
    if (list.starts_with('/')) {
      paths.emplace_back(list.substr(0, end));
    }
    list.remove_prefix(std::min(end + 1, list.size()));
  }
  return paths;
}

void addOnce(std::vector<fs::path>& paths, const fs::path& path) {
  const fs::path clean = path.lexically_normal();
  if (std::find(paths.begin(), paths.end(), clean) == paths.end()) {
    paths.push_back(clean);
  }
}

}  // namespace

DesktopPaths DesktopPaths::fromEnvironment() {
  DesktopPaths paths;
  paths.home = environment("HOME");
  fs::path dataHome = environment("XDG_DATA_HOME");
  if (!dataHome.is_absolute()) {
    dataHome = paths.home / ".local/share";
  }
  addOnce(paths.applications, dataHome / "applications");
  for (const fs::path& folder :
       pathList(environment("XDG_DATA_DIRS"), "/usr/local/share:/usr/share")) {
    addOnce(paths.applications, folder / "applications");
  }
  addOnce(paths.applications, dataHome / "flatpak/exports/share/applications");
  addOnce(paths.applications, "/var/lib/flatpak/exports/share/applications");
  addOnce(paths.applications, "/var/lib/snapd/desktop/applications");

  // A service may have a shorter search path than the apps of the session.
  for (const fs::path& folder : pathList(environment("PATH"), "")) {
    addOnce(paths.programs, folder);
  }
  for (const char* folder : {"/usr/local/bin", "/usr/bin", "/bin", "/usr/local/games", "/usr/games",
                             "/usr/local/sbin", "/usr/sbin", "/sbin"}) {
    addOnce(paths.programs, folder);
  }

  for (const char* folder : {"/",
                             "/usr",
                             "/usr/lib",
                             "/usr/lib32",
                             "/usr/lib64",
                             "/usr/libexec",
                             "/usr/share",
                             "/usr/local",
                             "/usr/local/lib",
                             "/usr/local/share",
                             "/lib",
                             "/lib64",
                             "/opt",
                             "/home",
                             "/root",
                             "/tmp",
                             "/var",
                             "/var/lib",
                             "/snap",
                             "/mnt",
                             "/media",
                             "/srv"}) {
    paths.shared.emplace_back(folder);
  }

  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    if (paths.locale = environment(name); !paths.locale.empty()) {
      break;
    }
  }
  return paths;
}

}  // namespace plemora
