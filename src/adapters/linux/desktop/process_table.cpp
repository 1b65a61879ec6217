#include "adapters/linux/desktop/process_table.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <climits>
#include <cstdio>
#include <string_view>
#include <utility>

namespace plemora {

namespace {

constexpr std::size_t mostText = 4 << 20;
constexpr std::string_view deletedSuffix = " (deleted)";

/// Plain calls: a scan reads thousands of these files, and none needs a stream's buffer.
std::string readText(const std::string& file, bool inOneRead = false) {
  const int descriptor = open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (descriptor < 0) {
    return {};
  }
  std::string text;
  char buffer[4096];
  ssize_t count = 0;
  while (text.size() < mostText && (count = read(descriptor, buffer, sizeof buffer)) > 0) {
    text.append(buffer, static_cast<std::size_t>(count));
    if (inOneRead) {
      break;
    }
  }
  close(descriptor);
  return text;
}

std::string readLink(const std::string& file) {
  char buffer[PATH_MAX];
  const ssize_t count = readlink(file.c_str(), buffer, sizeof buffer);
  return count <= 0 ? std::string() : std::string(buffer, static_cast<std::size_t>(count));
}

std::vector<std::string> splitAtZeros(std::string_view text) {
  std::vector<std::string> parts;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\0'), text.size());
    parts.emplace_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return parts;
}

template <typename Number>
bool parseNumber(std::string_view text, Number& number) {
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

/// Takes the next word off the front.
std::string_view nextWord(std::string_view& text) {
  text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
  const std::string_view word = text.substr(0, text.find_first_of(" \n"));
  text.remove_prefix(word.size());
  return word;
}

}  // namespace

ProcessTable::ProcessTable(std::filesystem::path root) : root_(root.string() + "/") {}

std::string ProcessTable::path(std::int32_t pid, const char* file) const {
  return root_ + std::to_string(pid) + "/" + file;
}

std::optional<ProcessStatus> ProcessTable::status(std::int32_t pid) const {
  const std::string text = readText(path(pid, "stat"), true);  // one short record
  // "PID (name) state parent ...": the name may hold blanks and brackets.
  const std::size_t open = text.find('(');
  const std::size_t close = text.rfind(')');
  if (open == std::string::npos || close == std::string::npos || close < open) {
    return std::nullopt;
  }
  ProcessStatus status;
  status.name = text.substr(open + 1, close - open - 1);
  std::string_view rest = std::string_view(text).substr(close + 1);
  const std::string_view state = nextWord(rest);
  if (state == "Z" || state == "X" || !parseNumber(nextWord(rest), status.parent)) {
    return std::nullopt;  // a zombie runs nothing any more
  }
  constexpr int fieldsBetween = 17;  // from the parent (4th) to the start time (22nd)
  for (int i = 0; i < fieldsBetween; ++i) {
    nextWord(rest);
  }
  if (!parseNumber(nextWord(rest), status.startTime)) {
    return std::nullopt;
  }
  return status;
}

std::vector<std::string> ProcessTable::arguments(std::int32_t pid) const {
  return splitAtZeros(readText(path(pid, "cmdline")));
}

std::string ProcessTable::executable(std::int32_t pid) const {
  std::string file = readLink(path(pid, "exe"));
  if (file.ends_with(deletedSuffix)) {  // replaced by an update while it runs
    file.resize(file.size() - deletedSuffix.size());
  }
  return file;
}

std::string ProcessTable::folder(std::int32_t pid) const {
  return readLink(path(pid, "cwd"));
}

std::string ProcessTable::controlGroup(std::int32_t pid) const {
  const std::string text = readText(path(pid, "cgroup"));
  std::string unified;
  for (std::string_view rest = text; !rest.empty();) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    if (const std::size_t at = line.find(":name=systemd:"); at != std::string_view::npos) {
      return std::string(line.substr(at + std::string_view(":name=systemd:").size()));
    }
    if (line.starts_with("0::")) {
      unified = line.substr(3);
    }
  }
  return unified;
}

std::vector<std::string> ProcessTable::environment(std::int32_t pid) const {
  return splitAtZeros(readText(path(pid, "environ")));
}

std::string ProcessTable::flatpakId(std::int32_t pid) const {
  const std::string content = readText(path(pid, "root/.flatpak-info"));
  bool inside = false;
  for (std::string_view text = content; !text.empty();) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    if (line.starts_with('[')) {
      inside = line == "[Application]";
    } else if (inside && line.starts_with("name=")) {
      return std::string(line.substr(5));
    }
  }
  return {};
}

std::vector<std::int32_t> ProcessTable::all() const {
  std::vector<std::int32_t> pids;
  if (DIR* folder = opendir(root_.c_str())) {
    while (const dirent* item = readdir(folder)) {
      std::int32_t pid = 0;
      if (parseNumber(std::string_view(item->d_name), pid) && pid > 0) {
        pids.push_back(pid);
      }
    }
    closedir(folder);
  }
  std::sort(pids.begin(), pids.end());
  return pids;
}

}  // namespace plemora
