#include "adapters/stage/desktop/stage_program.h"

#include <algorithm>
#include <ranges>
#include <utility>

namespace plemora {

namespace {

/// The event as the view of that window sees it.
template <class Event, class Target>
Event within(Event event, const Target& target) {
  event.position.x -= target.origin.x;
  event.position.y -= target.origin.y;
  return event;
}

}  // namespace

StageProgram::StageProgram(StageWorkspace& workspace, StageWindows& windows)
    : workspace_(workspace), windows_(windows) {}

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

void StageProgram::activate() {
  workspace_.activate(pid_);
  for (StageWindow* window : windows_.visible()) {
    if (window->titled) {
      window->pressed();
    }
  }
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

/// Whether the event is for the title bar.
bool StageProgram::movesWindow(StageWindow& window, const StagePointerEvent& event) {
  switch (event.phase) {
    case StagePointerEvent::Phase::pressed:
      if (StageWindow::closeButton.contains(event.position)) {
        window.close();
        return true;
      }
      if (event.position.y < StageWindow::titleBarHeight) {
        grip_ = event.position;
        return true;
      }
      return false;
    case StagePointerEvent::Phase::dragged:
      if (grip_) {
        Rect frame = window.frame();
        frame.x = event.location.x - grip_->x;
        frame.y = event.location.y + grip_->y - frame.height;
        window.setFrame(frame);
      }
      return grip_.has_value();
    case StagePointerEvent::Phase::released:
      return std::exchange(grip_, std::nullopt).has_value();
    default:
      return false;
  }
}

void StageProgram::pointer(const StageWindowRecord& window, const StagePointerEvent& event) {
  StageWindow& shown = *std::get<StageWindow*>(window.model);
  if (event.phase == StagePointerEvent::Phase::pressed) {
    shown.pressed();
    if (shown.titled) {
      workspace_.activate(pid_);
    }
  }
  if (shown.titled && movesWindow(shown, event)) {
    return;
  }
  using Phase = StagePointerEvent::Phase;
  const Target target =
      event.phase == Phase::dragged || event.phase == Phase::released || event.phase == Phase::left
          ? targetOf(shown, pointed_.lock())
          : targetAt(shown, event.position);
  // Views of one window that the pointer goes between.
  const Target before = targetOf(shown, pointed_.lock());
  if (before.client != nullptr && before.client != target.client) {
    StagePointerEvent left = within(event, before);
    left.phase = Phase::left;
    before.client->pointer(left);
  }
  pointed_ = event.phase == Phase::left ? nullptr : target.view;
  if (target.client != nullptr) {
    target.client->pointer(within(event, target));
  }
}

StageProgram::Target StageProgram::targetAt(StageWindow& window,
                                            const std::optional<Point>& position) {
  const StageSurface& surface = window.stageSurface();
  const Size size = window.frame().size();
  const Rect container = surface.container.value_or(Rect{0, 0, size.width, size.height});
  for (const HostedContent& content : surface.contents | std::views::reverse) {
    const Rect place = content.placeIn(container);
    if (content.takesInput() &&
        (!position || (surface.contents.size() == 1 && !surface.container) ||
         (place.contains(*position) && container.contains(*position)))) {
      return {content.view, dynamic_cast<StageWindowClient*>(content.view.get()), place.origin()};
    }
  }
  return {};
}

StageProgram::Target StageProgram::targetOf(StageWindow& window,
                                            const std::shared_ptr<HostedView>& view) {
  const StageSurface& surface = window.stageSurface();
  const auto found = std::ranges::find(surface.contents, view, &HostedContent::view);
  if (view == nullptr || found == surface.contents.end()) {
    return {};
  }
  return {view, dynamic_cast<StageWindowClient*>(view.get()),
          found->placeIn(surface.container.value_or(Rect{})).origin()};
}

void StageProgram::scroll(const StageWindowRecord& window, const StageScrollEvent& event) {
  const Target target = targetAt(*std::get<StageWindow*>(window.model), event.position);
  if (target.client != nullptr) {
    target.client->scroll(within(event, target));
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
  if (window == nullptr) {
    return;
  }
  if (StageWindowClient* client = targetAt(*window, std::nullopt).client) {
    client->key(event);
  }
}

}  // namespace plemora
