#include "adapters/stage/desktop/stage_program.h"

#include <algorithm>

namespace plemora {

StageProgram::StageProgram(StageWorkspace& workspace, StageWindows& windows)
    : clientOf([](StageWindow& window) {
        return dynamic_cast<StageWindowClient*>(window.stageSurface().content.get());
      }),
      workspace_(workspace),
      windows_(windows) {}

void StageProgram::start(const std::string& bundleID, const std::string& name) {
  end();
  name_ = name;
  policy_ = ActivationPolicy::accessory;
  pid_ = workspace_.start({.bundleID = bundleID,
                           .localizedName = name,
                           .icon = {"plemora"},
                           .activationPolicy = policy_});
  workspace_.onTerminated(pid_, [this] {
    pid_ = -1;
    if (onKilled) {
      onKilled();
    }
  });
}

void StageProgram::end() {
  if (isRunning()) {
    workspace_.exit(pid_);
    pid_ = -1;
  }
  mainMenu_.clear();
}

void StageProgram::setActivationPolicy(ActivationPolicy policy) {
  policy_ = policy;
  workspace_.update(
      pid_, [policy](RunningApplication& application) { application.activationPolicy = policy; });
}

std::vector<ApplicationWindow> StageProgram::windows() {
  std::vector<ApplicationWindow> result;
  for (StageWindow* window : windows_.windows()) {
    result.push_back({window->options.identifier, window->isOnScreen()});
  }
  return result;
}

void StageProgram::terminate() {
  if (onTerminate) {
    onTerminate();
  }
}

void StageProgram::appendWindows(std::vector<StageWindowRecord>& windows) {
  for (StageWindow* window : windows_.visible()) {
    windows.push_back({.kind = StageWindowKind::program,
                       .number = window->number,
                       .order = window->forwardOrder(),
                       .ownerPid = pid_,
                       .ownerName = name_,
                       .level = window->options.level,
                       .frame = window->frame(),
                       .solid = window->frame(),
                       .alpha = window->alpha(),
                       .ignoresMouseEvents = window->options.ignoresMouseEvents,
                       .model = window});
  }
}

void StageProgram::pointer(const StageWindowRecord& window, const StagePointerEvent& event) {
  StageWindow& shown = *std::get<StageWindow*>(window.model);
  if (event.phase == StagePointerEvent::Phase::pressed) {
    shown.pressed();
  }
  if (StageWindowClient* client = clientOf(shown)) {
    client->pointer(event);
  }
}

void StageProgram::scroll(const StageWindowRecord& window, const StageScrollEvent& event) {
  if (StageWindowClient* client = clientOf(*std::get<StageWindow*>(window.model))) {
    client->scroll(event);
  }
}

StageWindow* StageProgram::keyWindow() {
  const auto all = windows_.visible();
  StageWindow* key = nullptr;
  for (StageWindow* window : all) {
    if (window->isKey && (key == nullptr || window->forwardOrder() > key->forwardOrder())) {
      key = window;
    }
  }
  return key;
}

std::int64_t StageProgram::keyOrder() {
  StageWindow* window = keyWindow();
  return window == nullptr ? 0 : window->forwardOrder();
}

void StageProgram::key(const StageKeyEvent& event) {
  StageWindow* window = keyWindow();
  if (StageWindowClient* client = window == nullptr ? nullptr : clientOf(*window)) {
    client->key(event);
  }
}

}  // namespace plemora
