#include "adapters/linux/desktop/program.h"

#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include "adapters/linux/desktop/interpreters.h"

namespace plemora {

namespace {

namespace fs = std::filesystem;

std::string baseName(const std::string& path) {
  return fs::path(path).filename().string();
}

/// The path without links; the path itself when there is no such file (any more).
std::string realPath(const std::string& path) {
  std::error_code error;
  const fs::path real = fs::canonical(path, error);
  return error ? fs::path(path).lexically_normal().string() : real.string();
}

/// The path with the links in its folders followed, but not the one that it may be itself.
std::string linkPath(const std::string& path) {
  const fs::path whole(path);
  return (fs::path(realPath(whole.parent_path().string())) / whole.filename()).string();
}

/// What people would call the program at that path: generic names of entry files tell nothing.
std::string displayName(const std::string& path) {
  constexpr std::string_view generic[] = {"app.asar",    "app",     "resources", "main.py",
                                          "__main__.py", "main.js", "index.js",  "app.js"};
  fs::path named(path);
  while (named.has_relative_path() && std::find(std::begin(generic), std::end(generic),
                                                named.filename().string()) != std::end(generic)) {
    named = named.parent_path();
  }
  const std::string name = named.filename().string();
  return name.empty() ? baseName(path) : name;
}

bool isProgramFile(const std::string& path) {
  std::error_code error;
  return fs::is_regular_file(path, error) && access(path.c_str(), X_OK) == 0;
}

/// Commands that hand an app's start to somebody else, who is not the app.
bool startsSomethingElse(const std::string& name) {
  constexpr std::string_view names[] = {
      "flatpak", "snap",      "xdg-open",    "gtk-launch", "gio",       "dbus-send",   "gdbus",
      "pkexec",  "systemctl", "systemd-run", "toolbox",    "distrobox", "gapplication"};
  return std::find(std::begin(names), std::end(names), name) != std::end(names);
}

bool isAssignment(const std::string& word) {
  const std::size_t equals = word.find('=');
  return equals != std::string::npos && equals > 0 &&
         std::all_of(word.begin(), word.begin() + static_cast<std::ptrdiff_t>(equals),
                     [](unsigned char c) { return std::isalnum(c) || c == '_'; });
}

}  // namespace

bool isBelow(const std::string& path, const std::string& folder) {
  return path.size() > folder.size() && path.starts_with(folder) && path[folder.size()] == '/';
}

Programs::Programs(const DesktopPaths& paths) : home_(paths.home.string()) {
  for (const fs::path& folder : paths.programs) {
    searchPath_.push_back(folder.string());
  }
  shared_ = searchPath_;
  for (const fs::path& folder : paths.shared) {
    shared_.push_back(folder.string());
  }
}

std::string Programs::locate(const std::string& command, const std::string& folder) const {
  if (command.starts_with('/')) {
    return command;
  }
  if (command.find('/') != std::string::npos) {
    return folder.empty() ? std::string()
                          : (fs::path(folder) / command).lexically_normal().string();
  }
  for (const std::string& place : searchPath_) {
    if (std::string path = place + "/" + command; isProgramFile(path)) {
      return path;
    }
  }
  return {};
}

Program Programs::ofProcess(const std::vector<std::string>& arguments,
                            const std::string& executable, const std::string& folder) const {
  Program program;
  const std::string called = arguments.empty() ? std::string() : locate(arguments[0], folder);
  const std::string calledFile = called.empty() ? std::string() : realPath(called);
  // Of another user's process its own word is all there is.
  program.executable = executable.empty() ? calledFile : executable;
  program.calledAs =
      calledFile == program.executable && !called.empty() ? linkPath(called) : program.executable;
  program.file = program.executable;
  program.name = baseName(program.calledAs);

  const auto interpreted = interpretedProgram(baseName(program.executable), arguments);
  if (!interpreted) {
    return program;
  }
  switch (interpreted->kind) {
    case InterpretedProgram::Kind::nothing:
      program.isBareInterpreter = true;
      break;
    case InterpretedProgram::Kind::file: {
      const fs::path target = (fs::path(folder) / interpreted->target).lexically_normal();
      if (target.is_absolute()) {
        program.calledAs = linkPath(target.string());
        program.file = realPath(target.string());
        program.name =
            displayName(target.has_filename() ? target.string() : target.parent_path().string());
      } else {
        program.calledAs = program.file = program.executable + " " + interpreted->target;
        program.name = displayName(interpreted->target);
      }
      break;
    }
    case InterpretedProgram::Kind::named:
      program.calledAs = program.file = interpreted->target;
      program.name = interpreted->name;
      break;
  }
  return program;
}

Program Programs::ofCommand(std::vector<std::string> command) const {
  auto word = command.begin();
  if (word != command.end() && baseName(*word) == "env") {
    ++word;
    while (word != command.end() && (isAssignment(*word) || word->starts_with('-'))) {
      // "-u NAME" and "-C FOLDER" take the next word along.
      const bool takesNext = *word == "-u" || *word == "-C";
      ++word;
      if (takesNext && word != command.end()) {
        ++word;
      }
    }
  }
  command.erase(command.begin(), word);
  if (command.empty() || startsSomethingElse(baseName(command[0]))) {
    return {};
  }
  const std::string called = locate(command[0]);
  const std::string file = called.empty() ? std::string() : realPath(called);
  if (file.empty() || startsSomethingElse(baseName(file))) {
    return {};
  }
  Program program = ofProcess(command, file, {});
  return program.isBareInterpreter && command.size() > 1 ? Program{} : program;
}

std::string Programs::identifier(const Program& program) const {
  const std::string base = baseName(program.calledAs);
  const std::string found = base.empty() ? std::string() : locate(base);
  return !found.empty() && linkPath(found) == program.calledAs ? base : program.calledAs;
}

bool Programs::isShared(const std::string& folder) const {
  // The user's folder and what lies directly in it (downloads, the desktop), and the libraries of
  // one architecture, are shared too.
  const fs::path path(folder);
  return std::find(shared_.begin(), shared_.end(), folder) != shared_.end() || folder == home_ ||
         path.parent_path() == home_ || folder == home_ + "/.local/bin" ||
         folder == home_ + "/.local/share" || folder.ends_with("-linux-gnu");
}

std::string Programs::appFolder(const std::string& executable) const {
  if (!executable.starts_with('/')) {
    return {};
  }
  fs::path folder = fs::path(executable).parent_path();
  if (folder.filename() == "bin" && !isShared(folder.string())) {
    folder = folder.parent_path();  // /opt/app/bin belongs to /opt/app
  }
  return isShared(folder.string()) ? std::string() : folder.string();
}

}  // namespace plemora
