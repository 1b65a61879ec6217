#pragma once

#include <map>
#include <memory>
#include <string>

#include "adapters/files/file_operations.h"

namespace plemora {

/// A disk in memory that can fail, and that loses in a crash what was not synced: the content of
/// files, and the names in folders.
class FaultyDisk : public FileOperations {
 public:
  int find(const std::filesystem::path& file) override;
  int read(const std::filesystem::path& file, std::string& content) override;
  int write(const std::filesystem::path& file, std::string_view content) override;
  int sync(const std::filesystem::path& fileOrFolder) override;
  int rename(const std::filesystem::path& from, const std::filesystem::path& to) override;
  int renameToFree(const std::filesystem::path& from, const std::filesystem::path& to) override;
  int remove(const std::filesystem::path& file) override;
  int makeFolder(const std::filesystem::path& folder) override;
  std::filesystem::path target(const std::filesystem::path& file) override;

  /// The operation that many calls from now (1 = the next) and those after it fail with EIO, as
  /// many as count says.
  void failFrom(int call, int count) {
    failFirst_ = calls_ + call;
    failLast_ = failFirst_ + count - 1;
  }
  int calls() const { return calls_; }
  /// The power goes and comes back.
  void crash();

  void put(const std::string& file, const std::string& content);
  /// The file's text; "none" when there is no such file.
  std::string text(const std::string& file) const;
  std::size_t fileCount() const { return names_.size(); }

 private:
  struct File {
    std::string content;
    std::string synced;
  };
  using Names = std::map<std::string, std::shared_ptr<File>>;

  bool fails();

  Names names_;
  Names syncedNames_;
  int calls_ = 0;
  int failFirst_ = 0;
  int failLast_ = -1;
};

}  // namespace plemora
