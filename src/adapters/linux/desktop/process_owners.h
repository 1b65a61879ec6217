#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "adapters/linux/desktop/client_directory.h"
#include "adapters/linux/desktop/desktop_entries.h"
#include "adapters/linux/desktop/owner_rules.h"
#include "adapters/linux/desktop/process_table.h"
#include "adapters/linux/desktop/program.h"

namespace plemora {

/// Owners of processes, with the main process of each app: the outermost that belongs to it.
/// Answers are kept per process (PID and start time) for as long as what they rest on holds, so
/// that asking again costs two or three small reads. Main thread.
class ProcessOwners {
 public:
  ProcessOwners(const ProcessTable& processes, DesktopEntries& entries, const Programs& programs,
                const ClientDirectory& clients);
  ~ProcessOwners();

  /// None for a number that is neither a process nor a client. Holds until the next call.
  const ProcessOwner* find(std::int32_t pid);

  /// The numbers that find was asked for and that may still have an owner, ascending.
  std::vector<std::int32_t> asked() const;

 private:
  struct Record;

  Record* resolve(std::int32_t pid, int depth);
  bool holds(const Record& record, const std::optional<ProcessStatus>& status,
             const std::optional<ClientHints>& hints) const;
  void readProcess(Record& record, int depth);
  ProcessFacts factsOf(const Record& record) const;
  std::int32_t mainOf(const ProcessFacts& facts, const Record* parent, const ProcessOwner& owner,
                      int depth);
  bool readClient(Record& record) const;
  Record* store(std::unique_ptr<Record> record);
  void seekMain(std::int32_t stray);
  void setMain(Record& record, std::int32_t main) const;
  void forgetEnded();

  const ProcessTable& processes_;
  DesktopEntries& entries_;
  const Programs& programs_;
  const ClientDirectory& clients_;
  OwnerRules rules_;
  std::unordered_map<std::int32_t, std::unique_ptr<Record>> records_;
  std::uint64_t generation_ = 0;  ///< of the entries that the records rest on
  std::size_t forgetAt_ = 1024;
};

}  // namespace plemora
