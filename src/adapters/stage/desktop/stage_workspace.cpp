#include "adapters/stage/desktop/stage_workspace.h"

#include <utility>

namespace plemora {

StageWorkspace::StageWorkspace() {
  onForceTerminate = [this](const RunningApplication& application) {
    if (frontmost().get() == application.pid) {
      frontmost().set(-1);
    }
    const auto found = handlers_.find(application.pid);
    if (found != handlers_.end()) {
      const auto handler = std::move(found->second);
      handlers_.erase(found);
      handler();
    }
  };
}

std::int32_t StageWorkspace::start(RunningApplication application) {
  application.pid = nextPid_++;
  const std::int32_t pid = application.pid;
  launch(std::move(application));
  return pid;
}

void StageWorkspace::onTerminated(std::int32_t pid, std::function<void()> handler) {
  handlers_[pid] = std::move(handler);
}

void StageWorkspace::exit(std::int32_t pid) {
  handlers_.erase(pid);
  quit(pid);
  if (frontmost().get() == pid) {
    frontmost().set(-1);
  }
}

void StageWorkspace::handleScheme(const std::string& scheme,
                                  std::function<bool(const std::string& url)> handler) {
  schemes_[scheme] = std::move(handler);
}

bool StageWorkspace::openURL(const std::string& url) {
  openedURLs.push_back(url);
  const auto found = schemes_.find(url.substr(0, url.find(':')));
  if (found == schemes_.end() || !found->second) {
    return false;
  }
  const auto handler = found->second;
  return handler(url);
}

}  // namespace plemora
