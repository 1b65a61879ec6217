#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "adapters/files/file_operations.h"
#include "adapters/files/settings_file.h"

namespace plemora {

/// The settings file on its disk. Replaced whole: the new text is on the disk under another name
/// before it takes the name of the old. One thread at a time.
class SettingsStore {
 public:
  SettingsStore(std::filesystem::path file, std::shared_ptr<FileOperations> operations);

  /// What is stored; empty settings when nothing is. An unreadable file is set aside with a
  /// warning.
  SettingsFile load();

  /// Stores the settings. If somebody else has changed the file since, the members named in
  /// changed are taken from settings and all others from the file, and settings holds the result.
  /// Returns what went wrong, in words; empty when all is on the disk. The old file is whole then.
  std::string save(SettingsFile& settings, const std::set<std::string>& changed);

  const std::filesystem::path& file() const { return file_; }

 private:
  enum class Found { nothing, unreadable, readable };

  Found read(const std::filesystem::path& target, SettingsFile& settings, std::string& reason);
  /// The new name; empty with the reason extended when that failed.
  std::string setAside(const std::filesystem::path& target, std::string& reason);

  std::filesystem::path file_;
  std::shared_ptr<FileOperations> operations_;
  std::string lastText_;  ///< what the file held when we last read or wrote it
};

}  // namespace plemora
