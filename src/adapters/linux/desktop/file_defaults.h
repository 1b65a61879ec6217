#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "adapters/linux/desktop/file_operations.h"
#include "adapters/linux/desktop/settings_file.h"
#include "platform/user_defaults.h"

namespace plemora {

/// User defaults in one JSON file, replaced whole at each change and synced before the old one is
/// given up. A file that cannot be read is set aside under another name, never overwritten. A
/// write that fails keeps the values in memory, warns once, and is made up for by the next one.
/// Main thread. That no second process writes the same file is the caller's care.
class FileDefaults : public UserDefaults {
 public:
  /// arguments: the program's, without its name; "-key value" pairs lie on top of the file.
  FileDefaults(std::filesystem::path file, const std::vector<std::string>& arguments,
               std::shared_ptr<FileOperations> operations = makeFileOperations());

  /// plemora/settings.json below XDG_CONFIG_HOME, or below ~/.config when that is unset or no
  /// absolute path.
  static std::filesystem::path defaultFile();

  std::optional<bool> boolean(const std::string& key) override;
  std::optional<std::string> string(const std::string& key) override;
  std::optional<std::string> data(const std::string& key) override;

  void setBoolean(const std::string& key, bool value) override;
  void setString(const std::string& key, const std::string& value) override;
  void setData(const std::string& key, const std::string& bytes) override;
  void remove(const std::string& key) override;

 private:
  void load();
  bool setAside(const std::filesystem::path& file, const std::string& reason);
  void write(bool changed);
  std::string replaceFile();

  std::filesystem::path file_;
  std::shared_ptr<FileOperations> operations_;
  std::map<std::string, std::string> arguments_;
  SettingsFile settings_;
  bool mustWrite_ = false;     ///< memory is ahead of the file
  bool mustMoveAway_ = false;  ///< an unreadable file still has the name
  bool warned_ = false;        ///< of the present run of failures
};

/// The "-key value" pairs among a program's arguments. A key starts with exactly one dash; a word
/// that starts with a dash is a value only when a digit or a point follows. The last pair wins.
std::map<std::string, std::string> launchArguments(const std::vector<std::string>& arguments);

}  // namespace plemora
