#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "adapters/files/file_operations.h"
#include "platform/login_item.h"

namespace plemora {

/// Starts the program at login by a desktop entry among the user's autostart entries. Main thread.
class XdgLoginItem : public LoginItem {
 public:
  /// folder: of autostart entries. executable: absolute path of the program.
  XdgLoginItem(std::filesystem::path folder, std::string executable,
               std::shared_ptr<FileOperations> operations = makeFileOperations());

  LoginItemState state() override;
  std::optional<std::string> enable() override;

  /// "$XDG_CONFIG_HOME/autostart", or "~/.config/autostart".
  static std::filesystem::path defaultFolder();

 private:
  std::filesystem::path folder_;
  std::string executable_;
  std::shared_ptr<FileOperations> operations_;
};

/// The path as the first word of an Exec key; whatever it holds, it is read back the same.
std::string quotedForExec(const std::string& path);

}  // namespace plemora
