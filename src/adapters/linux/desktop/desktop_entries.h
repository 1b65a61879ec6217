#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "adapters/linux/desktop/desktop_entry.h"
#include "adapters/linux/desktop/desktop_paths.h"
#include "adapters/linux/desktop/program.h"

namespace plemora {

/// All installed applications. Several entries of one program (a browser and its web apps, a
/// hidden entry for links) count as one app, represented by the entry that starts the program
/// plainly. Pointers hold until the next refresh that returns true. Main thread.
class DesktopEntries {
 public:
  DesktopEntries(const DesktopPaths& paths, const Programs& programs);

  /// Reads the folders again if something was added to them or removed; true when it did.
  bool refresh();

  /// The entry with that id, also one that is not displayed; null when there is none.
  const DesktopEntry* byId(const std::string& id) const;
  const DesktopEntry* byFile(const std::filesystem::path& file) const;
  const DesktopEntry* byFlatpak(const std::string& id) const;
  const DesktopEntry* bySnap(const std::string& instance, const std::string& app) const;
  /// The app whose command runs this program, by its path, by a wrapper script that names it, or
  /// by lying in the app's own folder.
  const DesktopEntry* byProgram(const Program& program) const;

  /// The entry that stands for all of the same program; never null for an entry of this index.
  const DesktopEntry* representative(const DesktopEntry* entry) const;

  /// Real path of the executable that the entry starts; empty when unknown.
  std::string executable(const DesktopEntry* entry) const;

  /// Whether what the app starts are apps of their own: terminals, file managers, desktop shells,
  /// launchers, settings.
  bool startsOthers(const DesktopEntry* entry) const;

 private:
  struct Item {
    DesktopEntry entry;
    Program program;
  };
  using Items = std::vector<const Item*>;

  void load();
  void readFolder(const std::filesystem::path& root, const std::filesystem::path& folder,
                  int depth);
  const Item* best(const Items& items, const std::string& calledAs) const;

  const DesktopPaths& paths_;
  const Programs& programs_;
  std::vector<std::string> locales_;
  std::map<std::filesystem::path, std::filesystem::file_time_type> folders_;
  std::map<std::string, std::unique_ptr<Item>> items_;  ///< by id; null: masked by a hidden entry
  std::unordered_map<std::string, Items> byFile_;       ///< by the program's real path
  std::map<std::string, Items> byFolder_;               ///< by the app's own folder
  std::vector<std::pair<std::string, const Item*>> wrappers_;  ///< text of scripts that are entries
};

}  // namespace plemora
