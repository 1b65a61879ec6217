#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "adapters/linux/desktop/client_directory.h"
#include "adapters/linux/desktop/desktop_entries.h"
#include "adapters/linux/desktop/desktop_paths.h"
#include "adapters/linux/desktop/process_owners.h"
#include "adapters/linux/desktop/process_table.h"
#include "adapters/linux/desktop/program.h"
#include "platform/workspace.h"

namespace plemora {

/// Applications of a Linux desktop. An app is a desktop entry (bundle identifier = the entry's id
/// without ".desktop"); a program that no entry knows is an app of its own, so that whatever makes
/// sound can be shown. Every process leads to exactly one app: the app's main process is regular,
/// its other processes are prohibited and name the main one as responsible.
///
/// Nothing here watches anything: each call looks at /proc, with answers kept per process (PID and
/// start time) for as long as they hold. Main thread.
class LinuxWorkspace : public Workspace {
 public:
  LinuxWorkspace(const DesktopPaths& paths, std::shared_ptr<const ClientDirectory> clients);

  std::optional<RunningApplication> runningApplication(std::int32_t pid) override;

  /// The apps that answer for the PIDs asked for so far and still alive, by PID.
  std::vector<RunningApplication> runningApplications() override;

  std::optional<std::int32_t> responsiblePid(std::int32_t pid) override;
  std::optional<InstalledApplication> installedApplication(const std::string& bundleID) override;
  Image genericApplicationIcon() override;
  bool openURL(const std::string& url) override;
  /// There is no way to tell that every desktop has.
  [[nodiscard]] Subscription observeActivation(std::function<void(std::int32_t)>) override {
    return {};
  }
  bool forceTerminate(std::int32_t pid) override;

 private:
  std::shared_ptr<const ClientDirectory> clients_;
  ProcessTable processes_;
  Programs programs_;
  DesktopEntries entries_;
  ProcessOwners owners_;
};

}  // namespace plemora
