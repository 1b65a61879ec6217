#include "adapters/stage/desktop/stage_dock.h"

#include <algorithm>
#include <utility>

#include "adapters/stage/desktop/stage_program.h"
#include "adapters/stage/desktop/stage_workspace.h"

namespace plemora {

StageDock::StageDock(Screens& screens, StageWorkspace& workspace, StageProgram& program,
                     StageWindowNumbers& numbers)
    : screens_(screens),
      workspace_(workspace),
      program_(program),
      pid_(workspace.start({.pid = -1,
                            .bundleID = bundleID,
                            .localizedName = "Dock",
                            .icon = {},
                            .activationPolicy = ActivationPolicy::accessory})),
      number_(numbers.next()) {}

std::vector<RunningApplication> StageDock::icons() const {
  auto applications = workspace_.runningApplications();
  std::erase_if(applications, [](const RunningApplication& application) {
    return application.activationPolicy != ActivationPolicy::regular;
  });
  return applications;
}

Rect StageDock::frame() const {
  const auto& screens = screens_.screens().get();
  if (screens.empty()) {
    return {};
  }
  const double width = padding + static_cast<double>(std::max<std::size_t>(icons().size(), 1)) *
                                     (iconSize + padding);
  const Rect& screen = screens[0].frame;
  return {screen.midX() - width / 2, screen.minY() + margin, width, height};
}

Rect StageDock::iconFrame(std::size_t index) const {
  const Rect dock = frame();
  return {dock.minX() + padding + static_cast<double>(index) * (iconSize + padding),
          dock.minY() + padding, iconSize, iconSize};
}

void StageDock::appendWindows(std::vector<StageWindowRecord>& windows) {
  const Rect dock = frame();
  if (!dock.isEmpty()) {
    windows.push_back({.kind = StageWindowKind::dock,
                       .number = number_,
                       .order = number_,
                       .ownerPid = pid_,
                       .ownerName = "Dock",
                       .level = windowLevel,
                       .frame = dock,
                       .solid = dock});
  }
}

void StageDock::pointer(const StageWindowRecord& /*window*/, const StagePointerEvent& event) {
  if (event.phase != StagePointerEvent::Phase::released) {
    return;
  }
  const auto all = icons();
  for (std::size_t index = 0; index < all.size(); ++index) {
    if (iconFrame(index).contains(event.location)) {
      workspace_.activate(all[index].pid);
      if (all[index].pid == program_.pid() && program_.onReopen) {
        program_.onReopen();
      }
      return;
    }
  }
}

}  // namespace plemora
