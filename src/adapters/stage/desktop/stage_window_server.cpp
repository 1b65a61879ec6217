#include "adapters/stage/desktop/stage_window_server.h"

#include <algorithm>
#include <utility>

namespace plemora {

namespace {

constexpr double leastAlphaForPointer = 0.01;

}  // namespace

std::vector<StageWindowRecord> StageWindowServer::records() {
  std::vector<StageWindowRecord> all;
  for (StageWindowOwner* owner : owners_) {
    const std::size_t first = all.size();
    owner->appendWindows(all);
    for (std::size_t index = first; index < all.size(); ++index) {
      all[index].owner = owner;
    }
  }
  std::ranges::stable_sort(all, std::ranges::greater{}, [](const StageWindowRecord& window) {
    return std::pair(window.level, window.order);
  });
  return all;
}

std::optional<StageWindowRecord> StageWindowServer::hit(const Point& location) {
  const auto all = records();
  const auto found = std::ranges::find_if(all, [&](const StageWindowRecord& window) {
    return !window.ignoresMouseEvents && window.alpha > leastAlphaForPointer &&
           window.solid.contains(location);
  });
  return found == all.end() ? std::nullopt : std::optional(*found);
}

std::vector<WindowInfo> StageWindowServer::onScreenWindows() {
  std::vector<WindowInfo> infos;
  if (isSilent) {
    return infos;
  }
  for (const StageWindowRecord& window : records()) {
    infos.push_back({.number = window.number,
                     .ownerPid = window.ownerPid,
                     .ownerName = window.ownerName,
                     .layer = window.level,
                     .bounds = space_.flipped(window.frame),
                     .alpha = window.alpha});
  }
  return infos;
}

}  // namespace plemora
