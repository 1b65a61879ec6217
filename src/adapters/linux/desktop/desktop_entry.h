#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace plemora {

/// One application as a ".desktop" file describes it.
struct DesktopEntry {
  std::string id;  ///< the file's path below its applications folder, "/" as "-", no ".desktop"
  std::filesystem::path file;
  std::string name;                  ///< in the user's language
  std::string icon;                  ///< a name in the icon theme, or an absolute path
  std::vector<std::string> command;  ///< words of Exec without the field codes
  std::string tryExec;
  std::string startupWMClass;
  std::vector<std::string> categories;
  std::string flatpakId;
  std::string snapInstance;
  bool noDisplay = false;
  bool hidden = false;
  bool startsAtLogin = true;  ///< false: switched off, where it is an autostart entry

  bool hasCategory(std::string_view category) const;
};

/// Reads the text of a ".desktop" file; none unless it describes an application. The locales come
/// best first (localeCandidates). id and file stay empty.
std::optional<DesktopEntry> parseDesktopEntry(std::string_view text,
                                              const std::vector<std::string>& locales);

/// The suffixes that localized keys may bear for a locale, best first: "de_AT.UTF-8@euro" gives
/// "de_AT@euro", "de_AT", "de@euro", "de". None for "C" and "POSIX".
std::vector<std::string> localeCandidates(std::string_view locale);

/// The words of an Exec value (already unescaped as a string): quotes undone, field codes dropped.
std::vector<std::string> splitCommand(std::string_view command);

}  // namespace plemora
