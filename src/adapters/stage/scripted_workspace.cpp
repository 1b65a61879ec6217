#include "adapters/stage/scripted_workspace.h"

#include <algorithm>
#include <utility>

namespace plemora {

void ScriptedWorkspace::launch(RunningApplication application) {
  quit(application.pid);
  running_.push_back(std::move(application));
}

void ScriptedWorkspace::quit(std::int32_t pid) {
  std::erase_if(running_, [pid](const auto& application) { return application.pid == pid; });
}

void ScriptedWorkspace::update(std::int32_t pid,
                               const std::function<void(RunningApplication&)>& change) {
  const auto found = std::ranges::find(running_, pid, &RunningApplication::pid);
  if (found != running_.end()) {
    change(*found);
  }
}

void ScriptedWorkspace::setResponsiblePid(std::int32_t pid, std::int32_t responsible) {
  responsible_[pid] = responsible;
}

void ScriptedWorkspace::install(const std::string& bundleID, InstalledApplication application) {
  installed_[bundleID] = std::move(application);
}

std::optional<RunningApplication> ScriptedWorkspace::runningApplication(std::int32_t pid) {
  const auto found = std::ranges::find(running_, pid, &RunningApplication::pid);
  return found == running_.end() ? std::nullopt : std::optional(*found);
}

std::vector<RunningApplication> ScriptedWorkspace::runningApplications() {
  return running_;
}

std::optional<std::int32_t> ScriptedWorkspace::responsiblePid(std::int32_t pid) {
  const auto found = responsible_.find(pid);
  return found == responsible_.end() ? std::nullopt : std::optional(found->second);
}

std::optional<InstalledApplication> ScriptedWorkspace::installedApplication(
    const std::string& bundleID) {
  const auto found = installed_.find(bundleID);
  return found == installed_.end() ? std::nullopt : std::optional(found->second);
}

bool ScriptedWorkspace::forceTerminate(std::int32_t pid) {
  const auto application = runningApplication(pid);
  if (!application) {
    return false;
  }
  quit(pid);
  if (onForceTerminate) {
    onForceTerminate(*application);
  }
  return true;
}

void ScriptedWorkspace::activate(std::int32_t pid) {
  if (frontmost_.get() != pid) {
    frontmost_.set(pid);
  }
}

Subscription ScriptedWorkspace::observeActivation(std::function<void(std::int32_t pid)> handler) {
  return frontmost_.subscribe([handler = std::move(handler)](std::int32_t pid) {
    if (pid >= 0) {
      handler(pid);
    }
  });
}

}  // namespace plemora
