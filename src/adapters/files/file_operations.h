#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace plemora {

/// The few operations on files that storing things takes, so that tests can make each of them fail.
/// Nothing throws: each returns 0 or an errno. Any thread.
class FileOperations {
 public:
  virtual ~FileOperations() = default;

  /// ENOENT when nothing has that name.
  virtual int find(const std::filesystem::path& file) = 0;
  /// ENOENT when there is none.
  virtual int read(const std::filesystem::path& file, std::string& content) = 0;
  /// Creates the file anew; only its owner may read and write it.
  virtual int write(const std::filesystem::path& file, std::string_view content) = 0;
  /// Returns once the file's content, or the folder's list of names, is on the disk.
  virtual int sync(const std::filesystem::path& fileOrFolder) = 0;
  /// Takes the place of what has that name.
  virtual int rename(const std::filesystem::path& from, const std::filesystem::path& to) = 0;
  /// As rename, but EEXIST when the name is taken.
  virtual int renameToFree(const std::filesystem::path& from, const std::filesystem::path& to) = 0;
  virtual int remove(const std::filesystem::path& file) = 0;
  /// With those above it; open to their owner alone. No error when it exists.
  virtual int makeFolder(const std::filesystem::path& folder) = 0;
  /// The file that the name leads to through symbolic links; the name itself when it is no link
  /// or leads to nothing yet.
  virtual std::filesystem::path target(const std::filesystem::path& file) = 0;
};

/// Those of the system.
std::shared_ptr<FileOperations> makeFileOperations();

struct Replacement {
  int error = 0;           ///< 0: all is on the disk
  bool isInPlace = false;  ///< the name leads to the new content; but for an error also after a
                           ///< power failure
};

/// Gives a file new content, whole or not at all: under another name first, which then takes the
/// place of the file's. The folder must exist.
Replacement replaceFile(FileOperations& operations, const std::filesystem::path& file,
                        std::string_view content);

}  // namespace plemora
