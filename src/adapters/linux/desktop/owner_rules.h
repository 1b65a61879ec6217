#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "adapters/linux/desktop/client_directory.h"
#include "adapters/linux/desktop/desktop_entries.h"
#include "adapters/linux/desktop/program.h"

namespace plemora {

/// The app that a process belongs to.
struct ProcessOwner {
  std::string id;    ///< stable across runs
  std::string name;  ///< for people
  std::string icon;  ///< empty when there is none
  std::int32_t mainPid = -1;
  bool adopts = false;  ///< what its processes start belongs to it
};

/// What the rules look at in one process.
struct ProcessFacts {
  std::int32_t pid = -1;
  std::string kernelName;
  Program program;
  std::string controlGroup;
  std::string sandboxId;        ///< of the Flatpak sandbox around it
  std::string launchEntry;      ///< file of the desktop entry that launched it or an ancestor
  std::int32_t launchPid = -1;  ///< the process that was launched by that entry
  std::optional<ClientHints> hints;
};

/// Tells whose a process is, by what deserves most trust: the sandbox (portal, Flatpak, Snap), the
/// desktop entry that launched it, its systemd unit, the app that started it, the entry of its own
/// program, and at last the program itself. Pure but for the entries; mainPid is left alone.
class OwnerRules {
 public:
  OwnerRules(const DesktopEntries& entries, const Programs& programs);

  /// parent: owner and program of the process that started this one; null when there is none.
  ProcessOwner ofProcess(const ProcessFacts& facts, const ProcessOwner* parent,
                         const Program* parentProgram) const;

  /// Of a client whose process cannot be seen; none when it says nothing of itself.
  std::optional<ProcessOwner> ofClient(const ClientHints& hints) const;

 private:
  std::optional<ProcessOwner> bySandbox(const ProcessFacts& facts) const;
  std::optional<ProcessOwner> byLaunch(const ProcessFacts& facts) const;
  std::optional<ProcessOwner> byUnit(const ProcessFacts& facts) const;
  ProcessOwner byProgram(const ProcessFacts& facts) const;
  bool isPartOf(const Program& program, const Program& parent) const;

  ProcessOwner ofEntry(const DesktopEntry* entry) const;
  ProcessOwner ofPortalId(const std::string& id) const;
  ProcessOwner ofFlatpak(const std::string& id) const;
  ProcessOwner ofSnap(const std::string& instance, const std::string& app) const;

  const DesktopEntries& entries_;
  const Programs& programs_;
};

}  // namespace plemora
