#include "support/faulty_disk.h"

#include <cerrno>

namespace plemora {

namespace fs = std::filesystem;

bool FaultyDisk::fails() {
  ++calls_;
  return calls_ >= failFirst_ && calls_ <= failLast_;
}

int FaultyDisk::find(const fs::path& file) {
  if (fails()) {
    return EIO;
  }
  return names_.contains(file.string()) ? 0 : ENOENT;
}

int FaultyDisk::read(const fs::path& file, std::string& content) {
  if (fails()) {
    return EIO;
  }
  const auto found = names_.find(file.string());
  if (found == names_.end()) {
    return ENOENT;
  }
  content = found->second->content;
  return 0;
}

int FaultyDisk::write(const fs::path& file, std::string_view content) {
  const bool failing = fails();
  auto fresh = std::make_shared<File>();
  fresh->content = content.substr(0, failing ? content.size() / 2 : content.size());
  names_[file.string()] = fresh;
  return failing ? ENOSPC : 0;
}

int FaultyDisk::sync(const fs::path& fileOrFolder) {
  if (fails()) {
    return EIO;
  }
  if (const auto file = names_.find(fileOrFolder.string()); file != names_.end()) {
    file->second->synced = file->second->content;
  } else {
    syncedNames_ = names_;
  }
  return 0;
}

int FaultyDisk::rename(const fs::path& from, const fs::path& to) {
  if (fails()) {
    return EIO;
  }
  names_[to.string()] = names_.at(from.string());
  names_.erase(from.string());
  return 0;
}

int FaultyDisk::renameToFree(const fs::path& from, const fs::path& to) {
  return names_.contains(to.string()) ? EEXIST : rename(from, to);
}

int FaultyDisk::remove(const fs::path& file) {
  if (fails()) {
    return EIO;
  }
  return names_.erase(file.string()) > 0 ? 0 : ENOENT;
}

int FaultyDisk::makeFolder(const fs::path&) {
  return fails() ? EIO : 0;
}

fs::path FaultyDisk::target(const fs::path& file) {
  return file;
}

void FaultyDisk::crash() {
  names_ = syncedNames_;
  for (const auto& [name, file] : names_) {
    file->content = file->synced;
  }
  failLast_ = -1;
}

void FaultyDisk::put(const std::string& file, const std::string& content) {
  names_[file] = std::make_shared<File>(File{content, content});
  syncedNames_ = names_;
}

std::string FaultyDisk::text(const std::string& file) const {
  const auto found = names_.find(file);
  return found == names_.end() ? "none" : found->second->content;
}

}  // namespace plemora
