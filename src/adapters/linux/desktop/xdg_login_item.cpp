#include "adapters/linux/desktop/xdg_login_item.h"

#include <cerrno>
#include <cstdlib>
#include <system_error>
#include <utility>

#include "adapters/linux/desktop/desktop_entry.h"

namespace plemora {

namespace {

namespace fs = std::filesystem;

constexpr const char* fileName = "com.quorvane.mixer.desktop";

std::string describe(int error) {
  return std::generic_category().message(error);
}

/// As every value of a desktop entry is written.
std::string escaped(const std::string& value) {
  std::string text;
  for (const char c : value) {
    switch (c) {
      case '\\':
        text += "\\\\";
        break;
      case '\n':
        text += "\\n";
        break;
      case '\r':
        text += "\\r";
        break;
      case '\t':
        text += "\\t";
        break;
      default:
        text += c;
    }
  }
  // Spaces in front would be dropped.
  return text.starts_with(' ') ? "\\s" + text.substr(1) : text;
}

std::string entry(const std::string& executable) {
  return "[Desktop Entry]\n"
         "Type=Application\n"
         "Name=Plemora\n"
         "Comment=A volume for every app\n"
         "Icon=com.quorvane.mixer\n"
         "Exec=" +
         quotedForExec(executable) +
         "\n"
         // The entry is passed over once the program is gone.
         "TryExec=" +
         escaped(executable) +
         "\n"
         "StartupNotify=false\n";
}

bool isSwitchedOff(const std::string& text) {
  const auto known = parseDesktopEntry(text, {});
  return known &&
         (known->hidden || text.find("\nX-GNOME-Autostart-enabled=false") != std::string::npos);
}

}  // namespace

std::string quotedForExec(const std::string& path) {
  std::string word = "\"";
  for (const char c : path) {
    if (c == '"' || c == '`' || c == '$' || c == '\\') {
      word += '\\';
    }
    word += c;
    if (c == '%') {
      word += '%';  // one alone begins a field code
    }
  }
  return escaped(word + "\"");
}

XdgLoginItem::XdgLoginItem(fs::path folder, std::string executable,
                           std::shared_ptr<FileOperations> operations)
    : folder_(std::move(folder)),
      executable_(std::move(executable)),
      operations_(std::move(operations)) {}

fs::path XdgLoginItem::defaultFolder() {
  const char* configured = std::getenv("XDG_CONFIG_HOME");
  fs::path folder = configured ? configured : "";
  if (!folder.is_absolute()) {
    const char* home = std::getenv("HOME");
    folder = fs::path(home ? home : "/") / ".config";
  }
  return folder / "autostart";
}

std::optional<std::string> XdgLoginItem::enable() {
  if (!fs::path(executable_).is_absolute()) {
    return "the path of the program is not known";
  }
  if (const int error = operations_->makeFolder(folder_)) {
    return "the folder " + folder_.string() + " cannot be made: " + describe(error);
  }
  const fs::path file = operations_->target(folder_ / fileName);
  std::string present;
  int error = operations_->read(file, present);
  if (error == 0 && isSwitchedOff(present)) {
    return std::nullopt;
  }
  if (error != 0 && error != ENOENT) {
    return file.string() + " cannot be read: " + describe(error);
  }
  const fs::path fresh = file.parent_path() / ("." + file.filename().string() + ".new");
  error = operations_->write(fresh, entry(executable_));
  if (error == 0) {
    error = operations_->sync(fresh);
  }
  if (error == 0) {
    error = operations_->rename(fresh, file);
  }
  if (error != 0) {
    operations_->remove(fresh);
    return file.string() + " cannot be written: " + describe(error);
  }
  if (const int unsynced = operations_->sync(file.parent_path())) {
    return "the folder " + file.parent_path().string() + " cannot be synced: " + describe(unsynced);
  }
  return std::nullopt;
}

}  // namespace plemora
