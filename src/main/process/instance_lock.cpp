#include "main/process/instance_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace plemora {

InstanceLock::InstanceLock(const std::filesystem::path& file) {
  if (file.empty()) {
    problem_ = "XDG_RUNTIME_DIR is not set";
    return;
  }
  descriptor_ = open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
  if (descriptor_ < 0) {
    problem_ = file.string() + ": " + std::strerror(errno);
    return;
  }
  if (flock(descriptor_, LOCK_EX | LOCK_NB) == 0) {
    result_ = Result::acquired;
  } else if (errno == EWOULDBLOCK) {
    result_ = Result::held;
  } else {
    problem_ = file.string() + ": " + std::strerror(errno);
  }
}

InstanceLock::Result InstanceLock::retry() {
  if (result_ == Result::held && flock(descriptor_, LOCK_EX | LOCK_NB) == 0) {
    result_ = Result::acquired;
  }
  return result_;
}

InstanceLock::~InstanceLock() {
  if (descriptor_ >= 0) {
    close(descriptor_);
  }
}

std::filesystem::path InstanceLock::defaultFile() {
  const char* folder = std::getenv("XDG_RUNTIME_DIR");
  return folder == nullptr || *folder != '/' ? std::filesystem::path()
                                             : std::filesystem::path(folder) / "plemora.lock";
}

}  // namespace plemora
