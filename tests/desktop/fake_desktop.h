#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "adapters/linux/desktop/desktop_paths.h"
#include "support/temporary_folder.h"

namespace plemora {

/// One process as /proc shows it. Paths are those of the fake desktop.
struct FakeProcess {
  std::int32_t pid = 0;
  std::int32_t parent = 1;
  std::string executable = {};
  std::vector<std::string> arguments = {};  ///< empty: the executable alone
  std::string controlGroup = "/";
  std::vector<std::string> environment = {};
  std::string flatpakId = {};
  std::uint64_t startTime = 0;  ///< 0: the PID
};

/// A desktop in a folder: programs, desktop entries and processes. "@" at the start of a path, or
/// after "=" or a blank in a text, stands for the folder: "@/usr/bin/mpv".
class FakeDesktop {
 public:
  FakeDesktop();

  DesktopPaths paths() const;
  std::string expand(std::string text) const;

  void addProgram(const std::string& path, const std::string& content =
                                               "\x7f"
                                               "ELF");
  void addLink(const std::string& path, const std::string& target);
  /// lines: what follows "Type=Application", such as "Name=Player\nExec=player %U".
  void addEntry(const std::string& id, const std::string& lines,
                const std::string& folder = "@/usr/share/applications");
  void removeEntry(const std::string& id);

  void start(const FakeProcess& process);
  void end(std::int32_t pid);

 private:
  TemporaryFolder folder_;
};

}  // namespace plemora
