#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "adapters/files/file_operations.h"
#include "platform/serial_queue.h"
#include "platform/user_defaults.h"

namespace plemora {

/// User defaults in one JSON file, replaced whole after each change and synced before the old one
/// is given up. A file that cannot be read is set aside under another name, never overwritten. A
/// write that fails keeps the values in memory, warns once, and is made up for by the next one.
/// What others change in the file meanwhile is kept. Main thread. That no second process of this
/// program writes the same file is the caller's care.
class FileDefaults : public UserDefaults {
 public:
  /// arguments: the program's, without its name; "-key value" pairs lie on top of the file.
  /// queue: where the file is written, so that a slow disk never holds up the caller; changes made
  /// during a write are stored together. Without one, each change is on the disk when its call
  /// returns. The destructor waits for the queue if nobody else holds it.
  FileDefaults(std::filesystem::path file, const std::vector<std::string>& arguments,
               std::shared_ptr<SerialQueue> queue = nullptr,
               std::shared_ptr<FileOperations> operations = makeFileOperations());
  ~FileDefaults() override;

  /// plemora/settings.json below XDG_CONFIG_HOME, or below ~/.config when that is unset or no
  /// absolute path.
  static std::filesystem::path defaultFile();

  std::optional<bool> boolean(const std::string& key) override;
  std::optional<std::string> string(const std::string& key) override;
  /// Text that was stored reads as its bytes.
  std::optional<std::string> data(const std::string& key) override;

  void setBoolean(const std::string& key, bool value) override;
  void setString(const std::string& key, const std::string& value) override;
  void setData(const std::string& key, const std::string& bytes) override;
  void remove(const std::string& key) override;

 private:
  struct State;

  void noteChange(const std::string& key, bool changed);
  static void saveAll(State& state);

  std::map<std::string, std::string> arguments_;
  std::shared_ptr<State> state_;  ///< shared with the work on the queue
  std::shared_ptr<SerialQueue> queue_;
};

}  // namespace plemora
