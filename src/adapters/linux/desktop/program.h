#pragma once

#include <string>
#include <vector>

#include "adapters/linux/desktop/desktop_paths.h"

namespace plemora {

/// What a process really runs: of an interpreter the script, jar or module, else the executable.
struct Program {
  /// Its real path; "java:Class", "python:module" or "wine:path" for what has none; empty when
  /// nothing is known of it.
  std::string file;
  /// The path that it was called by, which may be a symbolic link to file.
  std::string calledAs;
  /// Real path of the executable: the interpreter's where there is one.
  std::string executable;
  /// For people: the base name it was called by.
  std::string name;
  /// An interpreter that runs no file: a shell, a one-liner, a worker of a larger program.
  bool isBareInterpreter = false;
};

/// Tells programs apart by their files, never by their names alone. Main thread.
class Programs {
 public:
  explicit Programs(const DesktopPaths& paths);

  /// executable: its real path, empty when it cannot be read. folder: the working directory.
  Program ofProcess(const std::vector<std::string>& arguments, const std::string& executable,
                    const std::string& folder) const;

  /// Of the command of a desktop entry. No file for one that has another program (flatpak, a
  /// browser's launcher by URL ...) start the app.
  Program ofCommand(std::vector<std::string> command) const;

  /// Names a program that no desktop entry knows, alike across runs: the base name when that is
  /// what the search path finds, else the path.
  std::string identifier(const Program& program) const;

  /// The folder that belongs to the program's app alone, such as "/opt/vendor/app"; empty when
  /// the executable lies among others.
  std::string appFolder(const std::string& executable) const;

  /// Absolute path of a program by the search path; the input when it is absolute; else empty.
  std::string locate(const std::string& command, const std::string& folder = {}) const;

 private:
  bool isShared(const std::string& folder) const;

  std::vector<std::string> searchPath_;
  std::vector<std::string> shared_;
  std::string home_;
};

/// Whether the path lies in the folder or below it.
bool isBelow(const std::string& path, const std::string& folder);

}  // namespace plemora
