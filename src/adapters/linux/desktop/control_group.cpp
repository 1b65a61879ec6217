#include "adapters/linux/desktop/control_group.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <optional>

namespace plemora {

namespace {

using Kind = ControlGroupApp::Kind;

/// Undoes the service manager's escapes: "google\x2dchrome" is "google-chrome".
std::string unescaped(std::string_view text) {
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    unsigned int code = 0;
    if (text.substr(i).starts_with("\\x") && i + 4 <= text.size()) {
      const char* digits = text.data() + i + 2;
      const auto result = std::from_chars(digits, digits + 2, code, 16);
      if (result.ec == std::errc() && result.ptr == digits + 2) {
        plain += static_cast<char>(code);
        i += 3;
        continue;
      }
    }
    plain += text[i];
  }
  return plain;
}

bool removePrefix(std::string_view& text, std::string_view prefix) {
  if (!text.starts_with(prefix)) {
    return false;
  }
  text.remove_prefix(prefix.size());
  return true;
}

bool removeSuffix(std::string_view& text, std::string_view suffix) {
  if (!text.ends_with(suffix)) {
    return false;
  }
  text.remove_suffix(suffix.size());
  return true;
}

std::vector<std::string_view> split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  while (true) {
    const std::size_t end = text.find(separator);
    parts.push_back(text.substr(0, end));
    if (end == std::string_view::npos) {
      return parts;
    }
    text.remove_prefix(end + 1);
  }
}

/// Every run of the dash-separated words that keeps the first or leaves out only the launcher,
/// longest first: not all launchers escape the dashes of an id or of their random part.
std::vector<std::string> idsAmong(std::string_view text, bool endsWithRandom) {
  std::vector<std::size_t> dashes = {0};  // starts of words
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '-') {
      dashes.push_back(i + 1);
    }
  }
  const std::size_t words = dashes.size();
  std::vector<std::string> ids;
  for (std::size_t end = words - (endsWithRandom ? 1 : 0); end > 0; --end) {
    const std::size_t stop = end == words ? text.size() : dashes[end] - 1;
    for (std::size_t start = 0; start < std::min<std::size_t>(2, end); ++start) {
      ids.push_back(unescaped(text.substr(dashes[start], stop - dashes[start])));
    }
  }
  return ids;
}

/// None: the unit says nothing, look further out. Kind::none: there is no app to be found.
std::optional<ControlGroupApp> readUnit(std::string_view unit) {
  const bool isScope = removeSuffix(unit, ".scope");
  if (!isScope && !removeSuffix(unit, ".service")) {
    return std::nullopt;
  }
  if (unit.starts_with("vte-spawn-")) {
    return ControlGroupApp{};
  }
  if (isScope && removePrefix(unit, "app-flatpak-")) {
    const std::size_t dash = unit.rfind('-');
    return ControlGroupApp{Kind::flatpak, {unescaped(unit.substr(0, dash))}};
  }
  if (removePrefix(unit, "snap.")) {
    const auto parts = split(unit, '.');
    if (parts.size() < 2) {
      return std::nullopt;
    }
    // "instance.app", with "-UUID" or ".UUID" behind in a scope.
    constexpr std::size_t uuidLength = 36;
    std::string_view app = parts[1];
    if (isScope && parts.size() == 2 && app.size() > uuidLength + 1 &&
        app[app.size() - uuidLength - 1] == '-') {
      app.remove_suffix(uuidLength + 1);
    }
    return ControlGroupApp{Kind::snap, {unescaped(parts[0]), unescaped(app)}};
  }
  // Activated over D-Bus: "dbus-:1.2-ID@0".
  const bool isActivated = removePrefix(unit, "dbus-");
  if (!isActivated && !removePrefix(unit, "app-")) {
    return std::nullopt;
  }
  return ControlGroupApp{Kind::unit, idsAmong(unit.substr(0, unit.find('@')), isScope)};
}

}  // namespace

ControlGroupApp controlGroupApp(std::string_view path) {
  const auto parts = split(path, '/');
  for (auto part = parts.rbegin(); part != parts.rend(); ++part) {
    if (auto app = readUnit(*part)) {
      return *app;
    }
  }
  return {};
}

}  // namespace plemora
