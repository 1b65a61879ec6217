#include "adapters/linux/desktop/package_updates.h"

#include <fstream>
#include <system_error>
#include <utility>

namespace plemora {

namespace {

namespace fs = std::filesystem;

/// Whether the package with that list of files put the file there.
bool lists(const fs::path& list, const std::string& file) {
  std::ifstream lines(list);
  for (std::string line; std::getline(lines, line);) {
    if (line == file) {
      return true;
    }
  }
  return false;
}

/// Name of the Debian package that the file belongs to; empty when it belongs to none.
std::string packageOf(const fs::path& file, const fs::path& root) {
  std::error_code error;
  for (fs::directory_iterator entry(root / "var/lib/dpkg/info", error), end; !error && entry != end;
       entry.increment(error)) {
    const fs::path& list = entry->path();
    // Only packages of this program: reading all lists takes long.
    if (list.extension() == ".list" && list.filename().string().starts_with("plemora") &&
        lists(list, file.string())) {
      const std::string name = list.stem().string();
      return name.substr(0, name.find(':'));  // without the architecture
    }
  }
  return {};
}

bool isCheckout(const fs::path& folder) {
  std::error_code error;
  return fs::is_regular_file(folder / "run", error) &&
         fs::is_regular_file(folder / "CMakeLists.txt", error) &&
         fs::is_directory(folder / "src", error);
}

}  // namespace

InstalledCopy copyOf(const fs::path& executable, const fs::path& root) {
  using Origin = InstalledCopy::Origin;
  if (!executable.is_absolute()) {
    return {};
  }
  if (const std::string name = packageOf(executable, root); !name.empty()) {
    return {Origin::debianPackage, name, executable.parent_path()};
  }
  for (fs::path folder = executable.parent_path(); folder.has_relative_path();
       folder = folder.parent_path()) {
    if (isCheckout(folder)) {
      return {Origin::sourceCheckout, {}, folder};
    }
  }
  return {Origin::unknown, {}, executable.parent_path()};
}

PackageUpdates::PackageUpdates(InstalledCopy copy, std::string version, Notify notify)
    : copy_(std::move(copy)), version_(std::move(version)), notify_(std::move(notify)) {}

std::optional<std::string> PackageUpdates::start() {
  return std::nullopt;  // nothing runs on its own: whoever installed this copy updates it
}

void PackageUpdates::checkForUpdates() {
  std::string text;
  switch (copy_.origin) {
    case InstalledCopy::Origin::debianPackage:
      text = "This copy comes with the package \"" + copy_.name +
             "\" and is updated with your system. By hand: sudo apt update, then sudo apt install "
             "--only-upgrade " +
             copy_.name;
      break;
    case InstalledCopy::Origin::sourceCheckout:
      text = "This copy was built from the sources in " + copy_.folder.string() +
             ". To update it, run \"git pull\" and then \"./run\" there.";
      break;
    case InstalledCopy::Origin::unknown:
      text = copy_.folder.empty()
                 ? "It is not known where this copy comes from. Update it the way it was installed."
                 : "This copy lies in " + copy_.folder.string() +
                       " and belongs to no package. Update it the way it was installed.";
      break;
  }
  notify_("Plemora " + version_, text);
}

}  // namespace plemora
