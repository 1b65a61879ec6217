#include "adapters/files/disk_files.h"

#include <cerrno>
#include <utility>

namespace plemora {

namespace {

bool isMissing(int error) {
  return error == ENOENT || error == ENOTDIR;
}

}  // namespace

DiskFiles::DiskFiles(std::string applicationSupport, std::shared_ptr<FileOperations> operations)
    : applicationSupport_(std::move(applicationSupport)), operations_(std::move(operations)) {}

bool DiskFiles::exists(const std::string& path) {
  return operations_->find(path) == 0;
}

std::optional<std::string> DiskFiles::read(const std::string& path) {
  std::string content;
  return operations_->read(path, content) == 0 ? std::optional(std::move(content)) : std::nullopt;
}

bool DiskFiles::writeAtomically(const std::string& path, const std::string& bytes) {
  return replaceFile(*operations_, operations_->target(path), bytes).error == 0;
}

bool DiskFiles::remove(const std::string& path) {
  const int error = operations_->remove(path);
  if (error != 0) {
    return isMissing(error);
  }
  operations_->sync(std::filesystem::path(path).parent_path());
  return true;
}

bool DiskFiles::makeFolder(const std::string& path) {
  return operations_->makeFolder(path) == 0;
}

}  // namespace plemora
