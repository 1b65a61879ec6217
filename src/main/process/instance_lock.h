#pragma once

#include <filesystem>
#include <string>

namespace plemora {

/// Keeps a second instance of the program out of a user session, with or without a session bus:
/// an advisory lock on a file, which the kernel drops however the holder ends.
class InstanceLock {
 public:
  enum class Result {
    acquired,
    held,         ///< by another process
    unavailable,  ///< the file cannot be made or locked; see problem()
  };

  /// Takes the lock on the file, which is made if need be and stays behind.
  explicit InstanceLock(const std::filesystem::path& file);
  /// Gives the lock back.
  ~InstanceLock();
  InstanceLock(const InstanceLock&) = delete;
  InstanceLock& operator=(const InstanceLock&) = delete;

  /// plemora.lock in XDG_RUNTIME_DIR; empty when that is not set.
  static std::filesystem::path defaultFile();

  Result result() const { return result_; }
  /// Tries again to take a lock that is held, and says how that went.
  Result retry();
  const std::string& problem() const { return problem_; }

 private:
  int descriptor_ = -1;
  Result result_ = Result::unavailable;
  std::string problem_;
};

}  // namespace plemora
