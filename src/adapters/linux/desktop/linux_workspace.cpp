#include "adapters/linux/desktop/linux_workspace.h"

#include <signal.h>

#include <set>
#include <utility>

#include "adapters/linux/desktop/url_opener.h"

namespace plemora {

LinuxWorkspace::LinuxWorkspace(const DesktopPaths& paths,
                               std::shared_ptr<const ClientDirectory> clients)
    : clients_(std::move(clients)),
      processes_(paths.processes),
      programs_(paths),
      entries_(paths, programs_),
      owners_(processes_, entries_, programs_, *clients_) {}

std::optional<RunningApplication> LinuxWorkspace::runningApplication(std::int32_t pid) {
  const ProcessOwner* owner = owners_.find(pid);
  if (!owner) {
    return std::nullopt;
  }
  RunningApplication application;
  application.pid = pid;
  application.bundleID = owner->id;
  application.localizedName = owner->name;
  application.icon.source = owner->icon;
  application.activationPolicy =
      owner->mainPid == pid ? ActivationPolicy::regular : ActivationPolicy::prohibited;
  return application;
}

std::vector<RunningApplication> LinuxWorkspace::runningApplications() {
  std::set<std::int32_t> mains;
  for (const std::int32_t pid : owners_.asked()) {
    if (const ProcessOwner* owner = owners_.find(pid)) {
      mains.insert(owner->mainPid);
    }
  }
  std::vector<RunningApplication> applications;
  for (const std::int32_t pid : mains) {
    if (auto application = runningApplication(pid)) {
      applications.push_back(std::move(*application));
    }
  }
  return applications;
}

std::optional<std::int32_t> LinuxWorkspace::responsiblePid(std::int32_t pid) {
  const ProcessOwner* owner = owners_.find(pid);
  return owner ? std::optional(owner->mainPid) : std::nullopt;
}

std::optional<InstalledApplication> LinuxWorkspace::installedApplication(
    const std::string& bundleID) {
  entries_.refresh();
  const DesktopEntry* entry = entries_.byId(bundleID);
  if (!entry) {
    entry = entries_.byFlatpak(bundleID);
  }
  if (!entry) {
    return std::nullopt;
  }
  return InstalledApplication{entry->name, Image{entry->icon}};
}

Image LinuxWorkspace::genericApplicationIcon() {
  return Image{"application-x-executable"};
}

bool LinuxWorkspace::forceTerminate(std::int32_t pid) {
  return runningApplication(pid).has_value() && ::kill(pid, SIGKILL) == 0;
}

bool LinuxWorkspace::openURL(const std::string& url) {
  return openWithDesktop(url);
}

}  // namespace plemora
