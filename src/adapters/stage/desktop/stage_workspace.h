#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include "adapters/stage/scripted_workspace.h"

namespace plemora {

/// The applications that run on the stage, which one is in front, and what opens links. Main
/// thread.
class StageWorkspace : public ScriptedWorkspace {
 public:
  StageWorkspace();

  /// Starts an application under a process identifier that was never used; its own is passed over.
  std::int32_t start(RunningApplication application);
  /// What to do when somebody ends that process.
  void onTerminated(std::int32_t pid, std::function<void()> handler);
  /// It ends by itself, and its handler is not told.
  void exit(std::int32_t pid);

  /// What opens links whose part before the first ":" is the scheme.
  void handleScheme(const std::string& scheme, std::function<bool(const std::string& url)> handler);
  /// Keeps the URL, and opens it if its scheme is handled.
  bool openURL(const std::string& url) override;

 private:
  std::int32_t nextPid_ = 300;
  std::map<std::int32_t, std::function<void()>> handlers_;
  std::map<std::string, std::function<bool(const std::string&)>> schemes_;
};

}  // namespace plemora
