#include "adapters/linux/desktop/owner_rules.h"

#include <string_view>
#include <utility>

#include "adapters/linux/desktop/control_group.h"

namespace plemora {

namespace {

constexpr std::string_view snapPrefix = "snap.";

const std::string& firstNotEmpty(const std::string& a, const std::string& b) {
  return a.empty() ? b : a;
}

}  // namespace

OwnerRules::OwnerRules(const DesktopEntries& entries, const Programs& programs)
    : entries_(entries), programs_(programs) {}

ProcessOwner OwnerRules::ofProcess(const ProcessFacts& facts, const ProcessOwner* parent,
                                   const Program* parentProgram) const {
  for (const auto rule : {&OwnerRules::bySandbox, &OwnerRules::byLaunch, &OwnerRules::byUnit}) {
    if (auto owner = (this->*rule)(facts)) {
      return *owner;
    }
  }
  // A player that an app has started is that app's sound, whatever player it is.
  if (parent && parent->adopts) {
    return *parent;
  }
  // A worker of a script says no more than the interpreter's name, which may have an entry.
  const bool isPart = parent && parentProgram && isPartOf(facts.program, *parentProgram);
  if (isPart && facts.program.isBareInterpreter) {
    return *parent;
  }
  if (const DesktopEntry* entry = entries_.byProgram(facts.program)) {
    return ofEntry(entry);
  }
  if (isPart) {
    return *parent;
  }
  return byProgram(facts);
}

std::optional<ProcessOwner> OwnerRules::ofClient(const ClientHints& hints) const {
  if (!hints.portalAppId.empty()) {
    return ofPortalId(hints.portalAppId);
  }
  if (const DesktopEntry* entry = entries_.byId(hints.applicationId);
      entry && !hints.applicationId.empty()) {
    return ofEntry(entries_.representative(entry));
  }
  const std::string& said =
      firstNotEmpty(hints.applicationId, firstNotEmpty(hints.applicationName, hints.binary));
  if (said.empty()) {
    return std::nullopt;
  }
  // Its own word, which must not make it one with an app out here that is called the same.
  ProcessOwner owner;
  owner.id = "client:" + said;
  owner.name = firstNotEmpty(hints.applicationName, said);
  owner.icon = hints.iconName;
  return owner;
}

std::optional<ProcessOwner> OwnerRules::bySandbox(const ProcessFacts& facts) const {
  if (facts.hints && !facts.hints->portalAppId.empty()) {
    return ofPortalId(facts.hints->portalAppId);
  }
  const ControlGroupApp group = controlGroupApp(facts.controlGroup);
  if (group.kind == ControlGroupApp::Kind::flatpak) {
    return ofFlatpak(group.ids[0]);
  }
  if (!facts.sandboxId.empty()) {
    return ofFlatpak(facts.sandboxId);
  }
  if (group.kind == ControlGroupApp::Kind::snap) {
    return ofSnap(group.ids[0], group.ids[1]);
  }
  return std::nullopt;
}

std::optional<ProcessOwner> OwnerRules::byLaunch(const ProcessFacts& facts) const {
  if (facts.launchEntry.empty()) {
    return std::nullopt;
  }
  const DesktopEntry* entry = entries_.byFile(facts.launchEntry);
  if (!entry) {
    return std::nullopt;
  }
  entry = entries_.representative(entry);
  // The environment is inherited by all that a terminal or a desktop shell starts.
  if (facts.launchPid != facts.pid && entries_.startsOthers(entry)) {
    return std::nullopt;
  }
  return ofEntry(entry);
}

std::optional<ProcessOwner> OwnerRules::byUnit(const ProcessFacts& facts) const {
  const ControlGroupApp group = controlGroupApp(facts.controlGroup);
  if (group.kind != ControlGroupApp::Kind::unit) {
    return std::nullopt;
  }
  for (const std::string& id : group.ids) {
    if (const DesktopEntry* entry = entries_.byId(id)) {
      entry = entries_.representative(entry);
      return entries_.startsOthers(entry) ? std::nullopt : std::optional(ofEntry(entry));
    }
  }
  return std::nullopt;
}

ProcessOwner OwnerRules::byProgram(const ProcessFacts& facts) const {
  ProcessOwner owner;
  owner.id = firstNotEmpty(programs_.identifier(facts.program), facts.kernelName);
  if (const DesktopEntry* entry = entries_.byId(owner.id)) {
    // Its command may be one that nobody can see through, such as a line for the shell.
    if (entry->flatpakId.empty() && entry->snapInstance.empty() &&
        entries_.programFile(entry).empty()) {
      return ofEntry(entries_.representative(entry));
    }
    // It starts another program: the name must not make them one.
    owner.id = facts.program.calledAs + "#program";
  }
  owner.name = firstNotEmpty(facts.program.name, facts.kernelName);
  if (facts.hints) {
    owner.icon = facts.hints->iconName;
  }
  return owner;
}

/// Helpers of a program that no entry knows: its own executable once more without a script of its
/// own, or another one in the folder that belongs to it.
bool OwnerRules::isPartOf(const Program& program, const Program& parent) const {
  if (program.executable.empty() || parent.executable.empty()) {
    return false;
  }
  if (program.executable == parent.executable) {
    return program.isBareInterpreter || program.file == parent.file;
  }
  const std::string folder = programs_.appFolder(parent.file);
  return !folder.empty() && isBelow(program.file, folder);
}

ProcessOwner OwnerRules::ofEntry(const DesktopEntry* entry) const {
  ProcessOwner owner;
  owner.id = entry->id;
  owner.name = entry->name;
  owner.icon = entry->icon;
  owner.adopts = !entries_.startsOthers(entry);
  return owner;
}

ProcessOwner OwnerRules::ofPortalId(const std::string& id) const {
  if (id.starts_with(snapPrefix)) {
    const std::string snap = id.substr(snapPrefix.size());
    const std::size_t point = snap.find('.');
    const std::string instance = snap.substr(0, point);
    return ofSnap(instance, point == std::string::npos ? instance : snap.substr(point + 1));
  }
  return ofFlatpak(id);
}

ProcessOwner OwnerRules::ofFlatpak(const std::string& id) const {
  const DesktopEntry* entry = entries_.byFlatpak(id);
  if (!entry) {
    entry = entries_.byId(id);
  }
  if (entry) {
    return ofEntry(entry);
  }
  ProcessOwner owner;
  owner.id = id;
  owner.name = id.substr(id.rfind('.') + 1);
  owner.adopts = true;
  return owner;
}

ProcessOwner OwnerRules::ofSnap(const std::string& instance, const std::string& app) const {
  if (const DesktopEntry* entry = entries_.bySnap(instance, app)) {
    return ofEntry(entry);
  }
  ProcessOwner owner;
  owner.id = instance + "_" + app;
  owner.name = app;
  owner.adopts = true;
  return owner;
}

}  // namespace plemora
