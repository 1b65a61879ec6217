#include "adapters/linux/desktop/desktop_entry.h"

#include <algorithm>
#include <map>

namespace plemora {

namespace {

std::string_view trimmed(std::string_view text) {
  const auto isBlank = [](char c) { return c == ' ' || c == '\t' || c == '\r'; };
  while (!text.empty() && isBlank(text.front())) {
    text.remove_prefix(1);
  }
  while (!text.empty() && isBlank(text.back())) {
    text.remove_suffix(1);
  }
  return text;
}

/// Undoes the escapes of a value of type string.
std::string unescaped(std::string_view value) {
  std::string text;
  for (std::size_t i = 0; i < value.size(); ++i) {
    if (value[i] != '\\' || i + 1 == value.size()) {
      text += value[i];
      continue;
    }
    switch (value[++i]) {
      case 's':
        text += ' ';
        break;
      case 'n':
        text += '\n';
        break;
      case 't':
        text += '\t';
        break;
      case 'r':
        text += '\r';
        break;
      case '\\':
        text += '\\';
        break;
      default:  // such as "\;", which lists undo themselves
        text += '\\';
        text += value[i];
    }
  }
  return text;
}

std::vector<std::string> splitList(std::string_view list) {
  std::vector<std::string> parts;
  std::string part;
  for (std::size_t i = 0; i <= list.size(); ++i) {
    if (i == list.size() || list[i] == ';') {
      if (!part.empty()) {
        parts.push_back(std::move(part));
      }
      part.clear();
    } else {
      if (list[i] == '\\' && i + 1 < list.size() && list[i + 1] == ';') {
        ++i;
      }
      part += list[i];
    }
  }
  return parts;
}

using Group = std::map<std::string, std::string_view, std::less<>>;

/// The keys of "[Desktop Entry]"; the first of a name counts.
Group mainGroup(std::string_view text) {
  Group keys;
  bool inside = false;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = trimmed(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.starts_with('[')) {
      inside = line == "[Desktop Entry]";
    } else if (inside && !line.starts_with('#')) {
      if (const std::size_t equals = line.find('='); equals != std::string_view::npos) {
        keys.emplace(trimmed(line.substr(0, equals)), trimmed(line.substr(equals + 1)));
      }
    }
  }
  return keys;
}

std::string value(const Group& keys, std::string_view key) {
  const auto found = keys.find(key);
  return found == keys.end() ? std::string() : unescaped(found->second);
}

std::string localizedValue(const Group& keys, const std::string& key,
                           const std::vector<std::string>& locales) {
  for (const std::string& locale : locales) {
    if (keys.contains(key + "[" + locale + "]")) {
      return value(keys, key + "[" + locale + "]");
    }
  }
  return value(keys, key);
}

}  // namespace

bool DesktopEntry::hasCategory(std::string_view category) const {
  return std::find(categories.begin(), categories.end(), category) != categories.end();
}

std::optional<DesktopEntry> parseDesktopEntry(std::string_view text,
                                              const std::vector<std::string>& locales) {
  const Group keys = mainGroup(text);
  if (value(keys, "Type") != "Application" && value(keys, "Hidden") != "true") {
    return std::nullopt;
  }
  DesktopEntry entry;
  entry.name = localizedValue(keys, "Name", locales);
  entry.icon = localizedValue(keys, "Icon", locales);
  entry.command = splitCommand(value(keys, "Exec"));
  entry.tryExec = value(keys, "TryExec");
  entry.startupWMClass = value(keys, "StartupWMClass");
  entry.categories = splitList(value(keys, "Categories"));
  entry.flatpakId = value(keys, "X-Flatpak");
  entry.snapInstance = value(keys, "X-SnapInstanceName");
  entry.noDisplay = value(keys, "NoDisplay") == "true";
  entry.hidden = value(keys, "Hidden") == "true";
  entry.startsAtLogin = !entry.hidden && value(keys, "X-GNOME-Autostart-enabled") != "false";
  return entry;
}

std::vector<std::string> localeCandidates(std::string_view locale) {
  const std::size_t at = locale.find('@');
  const std::string modifier(at == std::string_view::npos ? "" : locale.substr(at));
  locale = locale.substr(0, at);
  locale = locale.substr(0, locale.find('.'));
  if (locale.empty() || locale == "C" || locale == "POSIX") {
    return {};
  }
  const std::string full(locale);
  const std::string language(locale.substr(0, locale.find('_')));
  std::vector<std::string> candidates;
  for (const std::string& candidate : {full + modifier, full, language + modifier, language}) {
    if (std::find(candidates.begin(), candidates.end(), candidate) == candidates.end()) {
      candidates.push_back(candidate);
    }
  }
  return candidates;
}

std::vector<std::string> splitCommand(std::string_view command) {
  std::vector<std::string> words;
  std::string word;
  bool started = false;
  bool quoted = false;
  bool dropped = false;  // the word was a field code
  const auto finish = [&] {
    if (started && !(dropped && word.empty())) {
      words.push_back(std::move(word));
    }
    word.clear();
    started = dropped = false;
  };
  for (std::size_t i = 0; i < command.size(); ++i) {
    const char c = command[i];
    const bool hasNext = i + 1 < command.size();
    if (c == '"') {
      quoted = !quoted;
      started = true;
    } else if (quoted && c == '\\' && hasNext) {
      word += command[++i];
    } else if (quoted && c == '%' && hasNext && command[i + 1] == '%') {
      word += command[++i];
    } else if (!quoted && (c == ' ' || c == '\t' || c == '\n')) {
      finish();
    } else if (!quoted && c == '%' && hasNext) {
      started = true;
      if (command[++i] == '%') {
        word += '%';
      } else {
        dropped = true;
      }
    } else {
      word += c;
      started = true;
    }
  }
  finish();
  return words;
}

}  // namespace plemora
