#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "adapters/linux/desktop/client_directory.h"
#include "adapters/linux/desktop/desktop_entries.h"
#include "adapters/linux/desktop/process_table.h"
#include "adapters/linux/desktop/program.h"

namespace plemora {

/// The app that a process belongs to.
struct ProcessOwner {
  std::string id;    ///< stable across runs
  std::string name;  ///< for people
  std::string icon;  ///< empty when there is none
  std::int32_t mainPid = -1;
  bool hasEntry = false;  ///< known to the desktop, not just a program
  bool adopts = false;    ///< what its processes start belongs to it
};

/// Finds owners, by what deserves most trust: the sandbox (portal, Flatpak, Snap), the desktop
/// entry that launched the process, its systemd unit, the app that started it, the entry of its
/// own program, and at last the program itself. Answers are kept per process for as long as
/// nothing that they rest on changes. Main thread.
class ProcessOwners {
 public:
  ProcessOwners(const ProcessTable& processes, DesktopEntries& entries, const Programs& programs,
                const ClientDirectory& clients);

  /// None for a number that is neither a process nor a client. Holds until the next call.
  const ProcessOwner* find(std::int32_t pid);

  /// Numbers that find was asked for and that still have an owner, ascending.
  std::vector<std::int32_t> known();

 private:
  struct Record;
  struct Facts;

  const Record* resolve(std::int32_t pid, int depth);
  bool holds(const Record& record, std::int32_t pid, const std::optional<ProcessStatus>& status,
             const std::optional<ClientHints>& hints) const;
  std::optional<ProcessOwner> decide(Facts& facts, int depth);
  const DesktopEntry* launched(Facts& facts) const;
  std::optional<ProcessOwner> ownerByParent(Facts& facts, const Record* parent) const;
  void findMain(Facts& facts, const Record* parent, ProcessOwner& owner, int depth);

  const ProcessTable& processes_;
  DesktopEntries& entries_;
  const Programs& programs_;
  const ClientDirectory& clients_;
  std::unordered_map<std::int32_t, std::unique_ptr<Record>> records_;
};

}  // namespace plemora
