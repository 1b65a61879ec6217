#include "adapters/linux/desktop/settings_store.h"

#include <cerrno>
#include <system_error>
#include <utility>

#include "base/log.h"

namespace plemora {

namespace {

namespace fs = std::filesystem;

constexpr Logger logger{"settings"};
constexpr int mostSetAside = 1000;

std::string describe(int error) {
  return std::generic_category().message(error);
}

}  // namespace

SettingsStore::SettingsStore(fs::path file, std::shared_ptr<FileOperations> operations)
    : file_(std::move(file)), operations_(std::move(operations)) {}

SettingsFile SettingsStore::load() {
  SettingsFile settings;
  std::string reason;
  const fs::path target = operations_->target(file_);
  if (read(target, settings, reason) == Found::unreadable && setAside(target, reason).empty()) {
    logger.warning(reason +
                   ". Settings stay in memory until it is moved or its folder can be written");
  }
  return settings;
}

std::string SettingsStore::save(SettingsFile& settings, const std::set<std::string>& changed) {
  const fs::path target = operations_->target(file_);
  const fs::path folder = target.parent_path();
  if (const int error = operations_->makeFolder(folder)) {
    return "the folder " + folder.string() + " cannot be made: " + describe(error);
  }
  SettingsFile stored;
  std::string reason;
  const std::string before = lastText_;
  const Found found = read(target, stored, reason);
  if (found == Found::unreadable && setAside(target, reason).empty()) {
    return reason;
  }
  if (found == Found::readable && lastText_ != before) {
    for (const std::string& key : changed) {
      stored.copyMember(key, settings);
    }
    settings = std::move(stored);
  }

  const std::string text = settings.serialise();
  const Replacement replacement = replaceFile(*operations_, target, text);
  if (!replacement.isInPlace) {
    lastText_ = before;  // what others changed is still to be taken over
    return target.string() + " cannot be replaced: " + describe(replacement.error);
  }
  lastText_ = text;
  if (replacement.error != 0) {
    return "the folder " + folder.string() + " cannot be synced: " + describe(replacement.error);
  }
  return {};
}

SettingsStore::Found SettingsStore::read(const fs::path& target, SettingsFile& settings,
                                         std::string& reason) {
  std::string text;
  const int error = operations_->read(target, text);
  if (error == ENOENT) {
    lastText_.clear();
    return Found::nothing;
  }
  if (error == 0) {
    if (auto parsed = SettingsFile::parse(text, reason)) {
      settings = std::move(*parsed);
      lastText_ = std::move(text);
      return Found::readable;
    }
  } else {
    reason = describe(error);
  }
  reason = target.string() + " cannot be read (" + reason + ")";
  return Found::unreadable;
}

std::string SettingsStore::setAside(const fs::path& target, std::string& reason) {
  for (int number = 1; number <= mostSetAside; ++number) {
    const std::string name = target.string() + ".unreadable-" + std::to_string(number);
    const int error = operations_->renameToFree(target, name);
    if (error == 0) {
      logger.warning(reason + "; it was set aside as " + name +
                     " and the settings start afresh. To use it again, mend it and move it back "
                     "while the program is not running");
      lastText_.clear();
      return name;
    }
    if (error != EEXIST) {
      reason += " and cannot be set aside as " + name + ": " + describe(error);
      return {};
    }
  }
  reason += " and there are too many like it beside it already";
  return {};
}

}  // namespace plemora
