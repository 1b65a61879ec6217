#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace plemora {

/// What tells a process from others that had its number before, or a program before it.
struct ProcessStatus {
  std::int32_t parent = 0;
  std::uint64_t startTime = 0;  ///< clock ticks since boot
  std::string name;             ///< the kernel's, 15 characters

  bool operator==(const ProcessStatus&) const = default;
};

/// The processes of this machine as /proc tells them. What cannot be read, because the process
/// has gone or belongs to somebody else, is empty. Any thread.
class ProcessTable {
 public:
  explicit ProcessTable(std::filesystem::path root = "/proc");

  std::optional<ProcessStatus> status(std::int32_t pid) const;
  std::vector<std::string> arguments(std::int32_t pid) const;
  std::string executable(std::int32_t pid) const;
  std::string folder(std::int32_t pid) const;
  /// Path in the hierarchy that the service manager keeps, such as "/user.slice/.../app-x.scope".
  std::string controlGroup(std::int32_t pid) const;
  /// The environment at the program's start, "NAME=value" each.
  std::vector<std::string> environment(std::int32_t pid) const;
  /// The app id in the Flatpak sandbox that the process lives in; empty outside of one.
  std::string flatpakId(std::int32_t pid) const;

  std::vector<std::int32_t> all() const;

 private:
  std::string path(std::int32_t pid, const char* file) const;

  std::string root_;
};

}  // namespace plemora
