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
/// plainly. Pointers hold for one generation. Main thread.
class DesktopEntries {
 public:
  DesktopEntries(const DesktopPaths& paths, const Programs& programs);

  /// Reads the folders again if something was added to them or removed.
  void refresh();
  /// Another number after each reading.
  std::uint64_t generation() const { return generation_; }

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

  /// Real path of the program that the entry starts; empty when unknown.
  std::string programFile(const DesktopEntry* entry) const;

  /// Whether what the app starts are apps of their own: terminals, file managers, desktop shells,
  /// launchers, settings.
  bool startsOthers(const DesktopEntry* entry) const;

 private:
  struct Item {
    DesktopEntry entry;
    Program program;
    std::string wrapper;  ///< the text of the program, when that is a shell script
    const Item* representative = nullptr;
  };

  void load();
  void readFolder(const std::filesystem::path& root, const std::filesystem::path& folder,
                  int depth);
  void readEntry(const std::filesystem::path& root, const std::filesystem::path& file);
  void index();
  const Item* item(const DesktopEntry* entry) const;
  const DesktopEntry* byFolder(const std::string& file) const;
  const DesktopEntry* byWrapper(const Program& program) const;

  std::vector<std::filesystem::path> roots_;
  const Programs& programs_;
  std::vector<std::string> locales_;
  std::uint64_t generation_ = 0;
  std::map<std::filesystem::path, std::filesystem::file_time_type> folders_;
  std::map<std::string, std::unique_ptr<Item>> items_;  ///< by id; null: masked by a hidden entry
  // Representatives only:
  std::unordered_map<std::string, const Item*> byFile_;     ///< by the program's real path
  std::unordered_map<std::string, const Item*> byFlatpak_;  ///< by the sandboxed app's id
  std::unordered_map<std::string, const Item*> byFolder_;   ///< null: several apps share it
};

}  // namespace plemora
