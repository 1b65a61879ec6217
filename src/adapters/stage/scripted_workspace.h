#pragma once

#include <functional>
#include <map>
#include <vector>

#include "platform/workspace.h"

namespace plemora {

/// Applications as a script has them. Main thread.
class ScriptedWorkspace : public Workspace {
 public:
  /// Adds a running application, behind those already there; one with the same PID is replaced.
  void launch(RunningApplication application);
  void quit(std::int32_t pid);
  /// Changes what is known of a running application, in its place.
  void update(std::int32_t pid, const std::function<void(RunningApplication&)>& change);
  void setResponsiblePid(std::int32_t pid, std::int32_t responsible);
  void install(const std::string& bundleID, InstalledApplication application);

  std::optional<RunningApplication> runningApplication(std::int32_t pid) override;
  std::vector<RunningApplication> runningApplications() override;
  std::optional<std::int32_t> responsiblePid(std::int32_t pid) override;
  bool forceTerminate(std::int32_t pid) override;
  std::optional<InstalledApplication> installedApplication(const std::string& bundleID) override;
  void activate(std::int32_t pid);
  /// Process identifier of the application in front; -1: none.
  Published<std::int32_t>& frontmost() { return frontmost_; }

  [[nodiscard]] Subscription observeActivation(
      std::function<void(std::int32_t pid)> handler) override;
  Image genericApplicationIcon() override { return {"application-x-executable"}; }
  bool openURL(const std::string& url) override {
    openedURLs.push_back(url);
    return true;
  }

  /// Told of an application that was ended; it has left the list by then.
  std::function<void(const RunningApplication&)> onForceTerminate;
  std::vector<std::string> openedURLs;

 private:
  Published<std::int32_t> frontmost_{-1};
  std::vector<RunningApplication> running_;
  std::map<std::int32_t, std::int32_t> responsible_;
  std::map<std::string, InstalledApplication> installed_;
};

}  // namespace plemora
