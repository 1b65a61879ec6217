#include "adapters/linux/desktop/process_owners.h"

#include <algorithm>
#include <charconv>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

namespace plemora {

namespace {

constexpr int deepestChain = 64;  // also ends a circle, which only a race can make

std::string valueOf(const std::vector<std::string>& environment, std::string_view name) {
  for (const std::string& variable : environment) {
    if (variable.size() > name.size() && variable.starts_with(name) &&
        variable[name.size()] == '=') {
      return variable.substr(name.size() + 1);
    }
  }
  return {};
}

std::string baseName(const std::string& path) {
  return path.substr(path.rfind('/') + 1);
}

/// Whether the client that claims this PID is another program than the process here.
bool isSomebodyElse(const ClientHints& hints, const Program& program) {
  return hints.pidIsClaimed && !hints.binary.empty() && !program.executable.empty() &&
         hints.binary != baseName(program.executable) &&
         hints.binary != baseName(program.calledAs) && hints.binary != program.name;
}

}  // namespace

/// What is known of one process, and what that rests on.
struct ProcessOwners::Record {
  std::int32_t pid = -1;
  std::optional<ProcessStatus> status;  ///< none: a client that is no process here
  std::optional<ClientHints> hints;
  Program program;
  ProcessOwner owner;
  std::uint64_t mainStart = 0;  ///< start time of the main process when that is another one
  bool isStray = false;         ///< outermost of its app, but not what the app's entry starts
  bool soughtMain = false;
  bool wasAsked = false;
};

ProcessOwners::ProcessOwners(const ProcessTable& processes, DesktopEntries& entries,
                             const Programs& programs, const ClientDirectory& clients)
    : processes_(processes),
      entries_(entries),
      programs_(programs),
      clients_(clients),
      rules_(entries, programs) {}

ProcessOwners::~ProcessOwners() = default;

const ProcessOwner* ProcessOwners::find(std::int32_t pid) {
  forgetEnded();
  const Record* found = resolve(pid, 0);
  if (!found) {
    return nullptr;
  }
  const std::int32_t outermost = found->owner.mainPid;
  if (const auto at = records_.find(outermost);
      at != records_.end() && at->second->isStray && !at->second->soughtMain) {
    at->second->soughtMain = true;
    seekMain(outermost);
  }
  // Looking around may have found that either has ended meanwhile.
  const auto own = records_.find(pid);
  if (own == records_.end()) {
    return nullptr;
  }
  Record& record = *own->second;
  if (const auto at = records_.find(outermost); at != records_.end() && at->second->isStray) {
    setMain(record, at->second->owner.mainPid);
  }
  record.wasAsked = true;
  return &record.owner;
}

std::vector<std::int32_t> ProcessOwners::asked() const {
  std::vector<std::int32_t> pids;
  for (const auto& [pid, record] : records_) {
    if (record->wasAsked) {
      pids.push_back(pid);
    }
  }
  std::sort(pids.begin(), pids.end());
  return pids;
}

ProcessOwners::Record* ProcessOwners::resolve(std::int32_t pid, int depth) {
  if (pid < 1 || depth > deepestChain) {
    return nullptr;
  }
  auto record = std::make_unique<Record>();
  record->pid = pid;
  record->status = ClientDirectory::isSynthetic(pid) ? std::nullopt : processes_.status(pid);
  record->hints = clients_.find(pid);
  if (const auto known = records_.find(pid);
      known != records_.end() && holds(*known->second, record->status, record->hints)) {
    return known->second.get();
  }
  if (depth == 0) {
    entries_.refresh();
    if (generation_ != entries_.generation()) {
      generation_ = entries_.generation();
      records_.clear();
    }
  }
  if (record->status) {
    readProcess(*record, depth);
  } else if (!readClient(*record)) {
    records_.erase(pid);
    return nullptr;
  }
  return store(std::move(record));
}

bool ProcessOwners::holds(const Record& record, const std::optional<ProcessStatus>& status,
                          const std::optional<ClientHints>& hints) const {
  // The name tells that another program was started in the process. The parent does not count:
  // who loses it stays with the app that started it.
  if (record.hints != hints || record.status.has_value() != status.has_value() ||
      (status &&
       (record.status->startTime != status->startTime || record.status->name != status->name))) {
    return false;
  }
  if (record.owner.mainPid == record.pid) {
    return true;
  }
  const auto main = processes_.status(record.owner.mainPid);
  return main && main->startTime == record.mainStart;
}

void ProcessOwners::readProcess(Record& record, int depth) {
  ProcessFacts facts = factsOf(record);
  record.program = facts.program;
  if (record.hints && isSomebodyElse(*record.hints, record.program)) {
    record.owner = rules_.ofClient(*record.hints).value_or(ProcessOwner{});
    record.owner.mainPid = record.pid;
    return;
  }
  const Record* parent = resolve(record.status->parent, depth + 1);
  record.owner = rules_.ofProcess(facts, parent ? &parent->owner : nullptr,
                                  parent ? &parent->program : nullptr);
  setMain(record, mainOf(facts, parent, record.owner, depth));
  if (record.owner.mainPid == record.pid && facts.launchPid != record.pid) {
    const DesktopEntry* entry = entries_.byId(record.owner.id);
    const std::string started = entry ? entries_.programFile(entry) : std::string();
    record.isStray = !started.empty() && started != record.program.file;
  }
}

ProcessFacts ProcessOwners::factsOf(const Record& record) const {
  const std::int32_t pid = record.pid;
  const auto environment = processes_.environment(pid);
  ProcessFacts facts;
  facts.pid = pid;
  facts.kernelName = record.status->name;
  facts.program = programs_.ofProcess(processes_.arguments(pid), processes_.executable(pid),
                                      processes_.folder(pid));
  // An AppImage is mounted under a new name at each start.
  const std::string mount = valueOf(environment, "APPDIR");
  const std::string image = valueOf(environment, "APPIMAGE");
  if (!mount.empty() && !image.empty() && isBelow(facts.program.file, mount)) {
    facts.program.file = facts.program.calledAs = image;
    facts.program.name = baseName(image);
  }
  facts.controlGroup = processes_.controlGroup(pid);
  facts.sandboxId = processes_.flatpakId(pid);
  facts.launchEntry = valueOf(environment, "GIO_LAUNCHED_DESKTOP_FILE");
  const std::string launched = valueOf(environment, "GIO_LAUNCHED_DESKTOP_FILE_PID");
  std::from_chars(launched.data(), launched.data() + launched.size(), facts.launchPid);
  facts.hints = record.hints;
  return facts;
}

std::int32_t ProcessOwners::mainOf(const ProcessFacts& facts, const Record* parent,
                                   const ProcessOwner& owner, int depth) {
  if (parent && parent->owner.id == owner.id) {
    return parent->owner.mainPid;
  }
  // One that has cut itself loose from its parents still knows what was launched.
  if (facts.launchPid != facts.pid) {
    const Record* launched = resolve(facts.launchPid, depth + 1);
    if (launched && launched->status && launched->owner.id == owner.id) {
      return launched->owner.mainPid;
    }
  }
  return facts.pid;
}

bool ProcessOwners::readClient(Record& record) const {
  if (!record.hints) {
    return false;
  }
  // A client whose process has just ended stays where it was until the server drops it.
  const auto last = records_.find(record.pid);
  auto owner = last != records_.end() && last->second->hints == record.hints
                   ? std::optional(last->second->owner)
                   : rules_.ofClient(*record.hints);
  if (!owner) {
    return false;
  }
  record.owner = std::move(*owner);
  record.owner.mainPid = record.pid;
  return true;
}

ProcessOwners::Record* ProcessOwners::store(std::unique_ptr<Record> record) {
  auto& place = records_[record->pid];
  record->wasAsked = place && place->wasAsked;
  place = std::move(record);
  return place.get();
}

/// Looks through all processes for the one that the stray belongs to: what the entry starts comes
/// first, then the oldest.
void ProcessOwners::seekMain(std::int32_t stray) {
  const Record& record = *records_.at(stray);
  const std::string id = record.owner.id;
  const std::string executable = record.program.executable;
  const std::string folder = programs_.appFolder(executable);
  const DesktopEntry* entry = entries_.byId(id);
  const std::string started = entry ? entries_.programFile(entry) : std::string();
  auto best = std::make_tuple(true, record.status->startTime, stray);
  for (const std::int32_t pid : processes_.all()) {
    const std::string other = processes_.executable(pid);
    const bool isClose = !other.empty() && (other == executable || other == started ||
                                            (!folder.empty() && isBelow(other, folder)));
    if (!isClose || pid == stray) {
      continue;
    }
    const Record* found = resolve(pid, 1);
    if (found && found->status && found->owner.id == id && found->owner.mainPid == pid) {
      best = std::min(best, std::make_tuple(found->isStray, found->status->startTime, pid));
    }
  }
  if (const auto at = records_.find(stray); at != records_.end()) {
    setMain(*at->second, std::get<2>(best));
  }
}

void ProcessOwners::setMain(Record& record, std::int32_t main) const {
  record.owner.mainPid = main;
  record.mainStart = 0;
  if (main != record.pid) {
    if (const auto status = processes_.status(main)) {
      record.mainStart = status->startTime;
    }
  }
}

void ProcessOwners::forgetEnded() {
  if (records_.size() < forgetAt_) {
    return;
  }
  std::erase_if(records_, [this](const auto& item) {
    return !item.second->hints && !processes_.status(item.first);
  });
  forgetAt_ = std::max<std::size_t>(1024, records_.size() * 2);
}

}  // namespace plemora
