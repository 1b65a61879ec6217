#include "adapters/linux/desktop/xdg_login_item.h"

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

LoginItemState XdgLoginItem::state() {
  std::string present;
  if (operations_->read(operations_->target(folder_ / fileName), present) != 0) {
    return LoginItemState::absent;
  }
  const auto known = parseDesktopEntry(present, {});
  if (known && !known->startsAtLogin) {
    return LoginItemState::switchedOff;
  }
  return known && !known->command.empty() ? LoginItemState::on : LoginItemState::absent;
}

std::optional<std::string> XdgLoginItem::enable() {
  if (!fs::path(executable_).is_absolute()) {
    return "the path of the program is not known";
  }
  if (const int error = operations_->makeFolder(folder_)) {
    return "the folder " + folder_.string() + " cannot be made: " + describe(error);
  }
  const fs::path file = operations_->target(folder_ / fileName);
  if (const int error = replaceFile(*operations_, file, entry(executable_)).error) {
    return file.string() + " cannot be written: " + describe(error);
  }
  return std::nullopt;
}

}  // namespace plemora
