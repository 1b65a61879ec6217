#include "adapters/linux/desktop/file_defaults.h"

#include <cstdlib>
#include <mutex>
#include <set>
#include <utility>

#include "adapters/files/settings_file.h"
#include "adapters/linux/desktop/launch_arguments.h"
#include "adapters/linux/desktop/settings_store.h"
#include "base/log.h"

namespace plemora {

namespace {

constexpr Logger logger{"settings"};

}  // namespace

struct FileDefaults::State {
  State(std::filesystem::path file, std::shared_ptr<FileOperations> operations)
      : store(std::move(file), std::move(operations)), settings(store.load()) {}

  SettingsStore store;  ///< used by whoever set saving
  std::mutex mutex;     ///< guards all below
  SettingsFile settings;
  std::set<std::string> unsaved;  ///< keys
  bool saving = false;
  bool warned = false;  ///< of the present run of failures
};

FileDefaults::FileDefaults(std::filesystem::path file, const std::vector<std::string>& arguments,
                           std::shared_ptr<SerialQueue> queue,
                           std::shared_ptr<FileOperations> operations)
    : arguments_(launchArguments(arguments)),
      state_(std::make_shared<State>(std::move(file), std::move(operations))),
      queue_(std::move(queue)) {}

FileDefaults::~FileDefaults() = default;

std::filesystem::path FileDefaults::defaultFile() {
  const char* configured = std::getenv("XDG_CONFIG_HOME");
  std::filesystem::path folder = configured ? configured : "";
  if (!folder.is_absolute()) {
    const char* home = std::getenv("HOME");
    folder = std::filesystem::path(home ? home : "/") / ".config";
  }
  return folder / "plemora" / "settings.json";
}

std::optional<bool> FileDefaults::boolean(const std::string& key) {
  if (const auto argument = arguments_.find(key); argument != arguments_.end()) {
    return booleanFromText(argument->second);
  }
  const std::lock_guard lock(state_->mutex);
  return state_->settings.boolean(key);
}

std::optional<std::string> FileDefaults::string(const std::string& key) {
  if (const auto argument = arguments_.find(key); argument != arguments_.end()) {
    return argument->second;
  }
  const std::lock_guard lock(state_->mutex);
  return state_->settings.bytes(key);
}

std::optional<std::string> FileDefaults::data(const std::string& key) {
  if (arguments_.contains(key)) {
    return std::nullopt;  // an argument is text
  }
  const std::lock_guard lock(state_->mutex);
  return state_->settings.bytes(key);
}

void FileDefaults::setBoolean(const std::string& key, bool value) {
  std::unique_lock lock(state_->mutex);
  const bool changed = state_->settings.setBoolean(key, value);
  lock.unlock();
  noteChange(key, changed);
}

void FileDefaults::setString(const std::string& key, const std::string& value) {
  setData(key, value);
}

void FileDefaults::setData(const std::string& key, const std::string& bytes) {
  std::unique_lock lock(state_->mutex);
  const bool changed = state_->settings.setBytes(key, bytes);
  lock.unlock();
  noteChange(key, changed);
}

void FileDefaults::remove(const std::string& key) {
  std::unique_lock lock(state_->mutex);
  const bool changed = state_->settings.remove(key);
  lock.unlock();
  noteChange(key, changed);
}

void FileDefaults::noteChange(const std::string& key, bool changed) {
  {
    const std::lock_guard lock(state_->mutex);
    if (changed) {
      state_->unsaved.insert(key);
    }
    if (state_->unsaved.empty() || state_->saving) {
      return;
    }
    state_->saving = true;
  }
  if (queue_) {
    queue_->async([state = state_] { saveAll(*state); });
  } else {
    saveAll(*state_);
  }
}

void FileDefaults::saveAll(State& state) {
  std::unique_lock lock(state.mutex);
  while (!state.unsaved.empty()) {
    SettingsFile settings = state.settings;
    const std::set<std::string> keys = std::exchange(state.unsaved, {});
    lock.unlock();
    const std::string problem = state.store.save(settings, keys);
    lock.lock();
    if (!problem.empty()) {
      state.unsaved.insert(keys.begin(), keys.end());
      if (!std::exchange(state.warned, true)) {
        logger.warning("Settings are not stored: " + problem +
                       ". They are kept in memory and stored with the next change that can be; "
                       "check the free space and the rights there");
      }
      break;
    }
    if (std::exchange(state.warned, false)) {
      logger.notice("Settings are stored again in " + state.store.file().string());
    }
    // What others had changed in the file, but for what has changed here since.
    for (const std::string& key : state.unsaved) {
      settings.copyMember(key, state.settings);
    }
    state.settings = std::move(settings);
  }
  state.saving = false;
}

}  // namespace plemora
