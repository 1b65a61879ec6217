#include "adapters/stage/memory_files.h"

#include <utility>

namespace plemora {

namespace {

std::string folderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == 0 || slash == path.npos ? "/" : path.substr(0, slash);
}

}  // namespace

MemoryFiles::MemoryFiles(std::string applicationSupport)
    : applicationSupport_(std::move(applicationSupport)) {}

bool MemoryFiles::exists(const std::string& path) {
  return files_.contains(path) || folders_.contains(path);
}

std::optional<std::string> MemoryFiles::read(const std::string& path) {
  const auto found = files_.find(path);
  return found == files_.end() ? std::nullopt : std::optional(found->second);
}

bool MemoryFiles::writeAtomically(const std::string& path, const std::string& bytes) {
  if (folders_.contains(path) || !folders_.contains(folderOf(path))) {
    return false;
  }
  files_[path] = bytes;
  return true;
}

bool MemoryFiles::remove(const std::string& path) {
  files_.erase(path);
  return !folders_.contains(path);
}

bool MemoryFiles::makeFolder(const std::string& path) {
  if (files_.contains(path) || (path != "/" && !makeFolder(folderOf(path)))) {
    return false;
  }
  folders_.insert(path);
  return true;
}

}  // namespace plemora
