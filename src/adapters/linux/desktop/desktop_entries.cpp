#include "adapters/linux/desktop/desktop_entries.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string_view>
#include <system_error>
#include <tuple>
#include <utility>

namespace plemora {

namespace {

namespace fs = std::filesystem;

constexpr int deepestFolder = 4;
constexpr std::size_t mostEntryText = 1 << 20;
constexpr std::size_t mostWrapperText = 64 << 10;

/// Programs with an entry of their own whose business is nevertheless to start others.
constexpr std::string_view launchers[] = {"xfce4-panel", "xfce4-appfinder", "xfdesktop", "lxpanel",
                                          "mate-panel",  "krunner",         "rofi",      "wofi",
                                          "fuzzel",      "bemenu-run",      "ulauncher", "albert",
                                          "synapse",     "weston",          "gamescope", "cage",
                                          "Xephyr",      "exo-open"};

std::string readText(const fs::path& file, std::size_t most) {
  std::ifstream stream(file, std::ios::binary);
  std::string text;
  char buffer[4096];
  while (text.size() < most && stream.read(buffer, sizeof buffer).gcount() > 0) {
    text.append(buffer, static_cast<std::size_t>(stream.gcount()));
  }
  return text;
}

/// The text of a shell script; empty for anything else.
std::string shellScript(const std::string& file) {
  std::string text = file.empty() ? file : readText(file, 1);
  if (!text.starts_with("#!")) {
    return {};
  }
  text = readText(file, mostWrapperText);
  const std::string_view firstLine = std::string_view(text).substr(0, text.find('\n'));
  return firstLine.find("sh") == std::string_view::npos ? std::string() : text;
}

/// Whether the text names the path, not just a longer one that begins alike.
bool mentions(std::string_view text, const std::string& path) {
  for (std::size_t at = text.find(path); at != std::string_view::npos;
       at = text.find(path, at + 1)) {
    const std::size_t end = at + path.size();
    const bool endsThere =
        end == text.size() || std::string_view(" \t\n\r\"'/;:$)`").find(text[end]) != text.npos;
    if (endsThere) {
      return true;
    }
  }
  return false;
}

fs::file_time_type changeTime(const fs::path& folder) {
  std::error_code error;
  const auto time = fs::last_write_time(folder, error);
  return error ? fs::file_time_type::min() : time;
}

}  // namespace

DesktopEntries::DesktopEntries(const DesktopPaths& paths, const Programs& programs)
    : roots_(paths.applications), programs_(programs), locales_(localeCandidates(paths.locale)) {
  load();
}

void DesktopEntries::refresh() {
  const bool unchanged = std::all_of(folders_.begin(), folders_.end(), [](const auto& folder) {
    return changeTime(folder.first) == folder.second;
  });
  if (!unchanged) {
    load();
  }
}

void DesktopEntries::load() {
  ++generation_;
  folders_.clear();
  items_.clear();
  for (const fs::path& root : roots_) {
    readFolder(root, root, 0);
  }
  index();
}

void DesktopEntries::readFolder(const fs::path& root, const fs::path& folder, int depth) {
  folders_[folder] = changeTime(folder);
  std::error_code error;
  for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error)) {
    std::error_code ignored;
    if (at->is_directory(ignored)) {
      if (depth < deepestFolder) {
        readFolder(root, at->path(), depth + 1);
      }
    } else if (at->path().extension() == ".desktop") {
      readEntry(root, at->path());
    }
  }
}

void DesktopEntries::readEntry(const fs::path& root, const fs::path& file) {
  std::string id = file.lexically_relative(root).replace_extension().string();
  std::replace(id.begin(), id.end(), '/', '-');
  if (items_.contains(id)) {
    return;  // a more important folder has it
  }
  auto entry = parseDesktopEntry(readText(file, mostEntryText), locales_);
  if (!entry) {
    return;
  }
  if (entry->hidden || (!entry->tryExec.empty() && programs_.locate(entry->tryExec).empty())) {
    items_.emplace(std::move(id), nullptr);
    return;
  }
  auto item = std::make_unique<Item>();
  item->entry = std::move(*entry);
  item->entry.id = id;
  item->entry.file = file;
  if (item->entry.name.empty()) {
    item->entry.name = id;
  }
  // In a sandbox the program is none of ours: its path means something else there.
  if (item->entry.flatpakId.empty() && item->entry.snapInstance.empty()) {
    item->program = programs_.ofCommand(item->entry.command);
    item->wrapper = shellScript(item->program.file);
  }
  items_.emplace(std::move(id), std::move(item));
}

void DesktopEntries::index() {
  byFile_.clear();
  byFlatpak_.clear();
  byFolder_.clear();
  // The best of each program: displayed, started with the fewest words, first by its id.
  const auto rank = [](const Item& item) {
    const bool isNamedLikeItsSandbox = item.entry.flatpakId == item.entry.id;
    return std::make_tuple(item.entry.noDisplay, !isNamedLikeItsSandbox, item.entry.command.size());
  };
  const auto offer = [&rank](auto& best, const std::string& key, const Item& item) {
    const Item*& known = best[key];
    if (!known || rank(item) < rank(*known)) {
      known = &item;
    }
  };
  for (const auto& [id, item] : items_) {
    if (item && !item->entry.flatpakId.empty()) {
      offer(byFlatpak_, item->entry.flatpakId, *item);
    } else if (item && !item->program.file.empty()) {
      offer(byFile_, item->program.file, *item);
    }
  }
  for (const auto& [id, item] : items_) {
    if (!item) {
      continue;
    }
    item->representative = item.get();
    if (!item->entry.flatpakId.empty()) {
      item->representative = byFlatpak_.at(item->entry.flatpakId);
    } else if (!item->program.file.empty()) {
      item->representative = byFile_.at(item->program.file);
      if (const std::string folder = programs_.appFolder(item->program.file); !folder.empty()) {
        const auto [place, isNew] = byFolder_.try_emplace(folder, item->representative);
        if (!isNew && place->second != item->representative) {
          place->second = nullptr;
        }
      }
    }
  }
}

const DesktopEntry* DesktopEntries::byId(const std::string& id) const {
  const auto found = items_.find(id);
  return found == items_.end() || !found->second ? nullptr : &found->second->entry;
}

const DesktopEntry* DesktopEntries::byFile(const fs::path& file) const {
  for (const fs::path& root : roots_) {
    const fs::path below = file.lexically_normal().lexically_relative(root);
    if (!below.empty() && *below.begin() != "..") {
      std::string id = fs::path(below).replace_extension().string();
      std::replace(id.begin(), id.end(), '/', '-');
      return byId(id);
    }
  }
  return byId(file.stem().string());
}

const DesktopEntry* DesktopEntries::byFlatpak(const std::string& id) const {
  const auto found = byFlatpak_.find(id);
  return found == byFlatpak_.end() ? nullptr : &found->second->entry;
}

const DesktopEntry* DesktopEntries::bySnap(const std::string& instance,
                                           const std::string& app) const {
  if (const DesktopEntry* exact = byId(instance + "_" + app)) {
    return exact;
  }
  const DesktopEntry* best = nullptr;
  for (const auto& [id, item] : items_) {
    if (item && item->entry.snapInstance == instance &&
        (!best || (best->noDisplay && !item->entry.noDisplay))) {
      best = &item->entry;
    }
  }
  return best;
}

const DesktopEntry* DesktopEntries::byProgram(const Program& program) const {
  if (program.file.empty()) {
    return nullptr;
  }
  if (const auto found = byFile_.find(program.file); found != byFile_.end()) {
    return &found->second->entry;
  }
  if (program.isBareInterpreter) {
    return nullptr;
  }
  const DesktopEntry* entry = byFolder(program.file);
  return entry ? entry : byWrapper(program);
}

const DesktopEntry* DesktopEntries::byFolder(const std::string& file) const {
  for (std::size_t end = file.rfind('/'); end != std::string::npos && end > 0;
       end = file.rfind('/', end - 1)) {
    if (const auto found = byFolder_.find(file.substr(0, end)); found != byFolder_.end()) {
      return found->second ? &found->second->entry : nullptr;
    }
  }
  return nullptr;
}

const DesktopEntry* DesktopEntries::byWrapper(const Program& program) const {
  // A script that calls a program from a common folder is only one of its users.
  const std::string folder = programs_.appFolder(program.file);
  if (folder.empty()) {
    return nullptr;
  }
  const Item* only = nullptr;
  for (const auto& [id, item] : items_) {
    if (item && !item->wrapper.empty() &&
        (mentions(item->wrapper, program.file) || mentions(item->wrapper, folder))) {
      if (only && only != item->representative) {
        return nullptr;
      }
      only = item->representative;
    }
  }
  return only ? &only->entry : nullptr;
}

const DesktopEntries::Item* DesktopEntries::item(const DesktopEntry* entry) const {
  return items_.at(entry->id).get();
}

const DesktopEntry* DesktopEntries::representative(const DesktopEntry* entry) const {
  return &item(entry)->representative->entry;
}

std::string DesktopEntries::programFile(const DesktopEntry* entry) const {
  return item(entry)->program.file;
}

bool DesktopEntries::startsOthers(const DesktopEntry* entry) const {
  if (entry->noDisplay || entry->hasCategory("TerminalEmulator") ||
      entry->hasCategory("FileManager") || entry->hasCategory("Settings")) {
    return true;
  }
  const std::string program = fs::path(programFile(entry)).filename().string();
  return std::find(std::begin(launchers), std::end(launchers), program) != std::end(launchers);
}

}  // namespace plemora
