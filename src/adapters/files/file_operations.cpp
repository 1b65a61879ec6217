#include "adapters/files/file_operations.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace plemora {

namespace {

namespace fs = std::filesystem;

constexpr int mostLinks = 40;  // as the kernel

/// A file descriptor that closes itself; below 0 when opening failed.
class Descriptor {
 public:
  Descriptor(const fs::path& file, int flags)
      : number_(open(file.c_str(), flags | O_CLOEXEC, 0600)) {}
  ~Descriptor() {
    if (number_ >= 0) {
      close(number_);
    }
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int number() const { return number_; }
  bool failed() const { return number_ < 0; }

 private:
  int number_;
};

class SystemFileOperations : public FileOperations {
 public:
  int find(const fs::path& file) override {
    struct stat status {};
    return lstat(file.c_str(), &status) == 0 ? 0 : errno;
  }

  int read(const fs::path& file, std::string& content) override {
    // Non-blocking, so that a FIFO of that name cannot hold us up.
    const Descriptor descriptor(file, O_RDONLY | O_NONBLOCK);
    if (descriptor.failed()) {
      return errno;
    }
    content.clear();
    char buffer[16384];
    while (true) {
      const ssize_t count = ::read(descriptor.number(), buffer, sizeof buffer);
      if (count == 0) {
        return 0;
      }
      if (count > 0) {
        content.append(buffer, static_cast<std::size_t>(count));
      } else if (errno != EINTR) {
        return errno;
      }
    }
  }

  int write(const fs::path& file, std::string_view content) override {
    if (unlink(file.c_str()) != 0 && errno != ENOENT) {
      return errno;
    }
    const Descriptor descriptor(file, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW);
    if (descriptor.failed()) {
      return errno;
    }
    while (!content.empty()) {
      const ssize_t count = ::write(descriptor.number(), content.data(), content.size());
      if (count >= 0) {
        content.remove_prefix(static_cast<std::size_t>(count));
      } else if (errno != EINTR) {
        return errno;
      }
    }
    return 0;
  }

  int sync(const fs::path& fileOrFolder) override {
    const Descriptor descriptor(fileOrFolder, O_RDONLY);
    if (descriptor.failed()) {
      return errno;
    }
    // Some file systems cannot sync folders and need not.
    return fsync(descriptor.number()) == 0 || errno == EINVAL ? 0 : errno;
  }

  int rename(const fs::path& from, const fs::path& to) override {
    return std::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
  }

  int renameToFree(const fs::path& from, const fs::path& to) override {
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) {
      return 0;
    }
    if (errno != EINVAL) {
      return errno;
    }
    // A file system without that call.
    return find(to) == 0 ? EEXIST : rename(from, to);
  }

  int remove(const fs::path& file) override { return unlink(file.c_str()) == 0 ? 0 : errno; }

  int makeFolder(const fs::path& folder) override {
    int error = mkdir(folder.c_str(), 0700) == 0 ? 0 : errno;
    if (error == ENOENT && folder.has_relative_path()) {
      if (const int above = makeFolder(folder.parent_path()); above != 0) {
        return above;
      }
      // Once more, and no oftener: a file system that makes no folders may say the same again.
      error = mkdir(folder.c_str(), 0700) == 0 ? 0 : errno;
    }
    if (error == 0) {
      return sync(folder.parent_path());
    }
    std::error_code ignored;
    return error == EEXIST && fs::is_directory(folder, ignored) ? 0 : error;
  }

  fs::path target(const fs::path& file) override {
    fs::path end = file;
    for (int links = 0; links < mostLinks; ++links) {
      std::error_code error;
      const fs::path next = fs::read_symlink(end, error);
      if (error) {
        return end;
      }
      end = next.is_absolute() ? next : end.parent_path() / next;
    }
    return file;
  }
};

}  // namespace

std::shared_ptr<FileOperations> makeFileOperations() {
  return std::make_shared<SystemFileOperations>();
}

Replacement replaceFile(FileOperations& operations, const fs::path& file,
                        std::string_view content) {
  const fs::path fresh = file.parent_path() / ("." + file.filename().string() + ".new");
  int error = operations.write(fresh, content);
  if (error == 0) {
    error = operations.sync(fresh);
  }
  if (error == 0) {
    error = operations.rename(fresh, file);
  }
  if (error != 0) {
    operations.remove(fresh);
    return {error, false};
  }
  return {operations.sync(file.parent_path()), true};
}

}  // namespace plemora
