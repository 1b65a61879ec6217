#pragma once

#include <memory>

#include "adapters/files/file_operations.h"
#include "platform/files.h"

namespace plemora {

/// Files on the disk. Symbolic links are followed, and stay. Main thread.
class DiskFiles : public Files {
 public:
  /// The folder's path is absolute.
  explicit DiskFiles(std::string applicationSupport,
                     std::shared_ptr<FileOperations> operations = makeFileOperations());

  std::string applicationSupport() override { return applicationSupport_; }
  bool exists(const std::string& path) override;
  std::optional<std::string> read(const std::string& path) override;
  bool writeAtomically(const std::string& path, const std::string& bytes) override;
  bool remove(const std::string& path) override;
  bool makeFolder(const std::string& path) override;

 private:
  std::string applicationSupport_;
  std::shared_ptr<FileOperations> operations_;
};

}  // namespace plemora
