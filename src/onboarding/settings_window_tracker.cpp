#include "onboarding/settings_window_tracker.h"

#include <algorithm>
#include <cstdint>
#include <sstream>
#include <string>

#include "base/log.h"
#include "platform/screens.h"
#include "platform/window_list.h"
#include "platform/workspace.h"

namespace plemora {

namespace {

constexpr double interval = 1.0 / 60;  // seconds
constexpr double logTimes[] = {0.5, 1.5, 3.0};

/// Points. What is smaller is a menu, a bubble or a question.
constexpr Size smallest{480, 300};

const Logger logger("tracker");

bool isOrdinary(const WindowInfo& window) {
  return window.layer == 0 && window.bounds && window.bounds->width >= smallest.width &&
         window.bounds->height >= smallest.height && window.alpha != 0.0;
}

bool holds(const Rect& outer, const Rect& inner) {
  return outer != inner && outer.minX() <= inner.minX() && inner.maxX() <= outer.maxX() &&
         outer.minY() <= inner.minY() && inner.maxY() <= outer.maxY();
}

}  // namespace

SettingsWindowTracker::SettingsWindowTracker(const OnboardingServices& services)
    : services_(services) {}

SettingsWindowTracker::~SettingsWindowTracker() = default;

void SettingsWindowTracker::start() {
  stop();
  frame.reset();
  MainQueue& queue = services_.menuBar.mainQueue;
  timer_ = queue.every(interval, [this] { tick(); });
  for (const double time : logTimes) {
    logTimers_.push_back(queue.after(time, [this] { logOnce(); }));
  }
}

void SettingsWindowTracker::stop() {
  timer_.reset();
  logTimers_.clear();
}

void SettingsWindowTracker::tick() {
  const auto current = currentFrame();
  if (current == frame) {
    return;
  }
  frame = current;
  // A copy, since the handler may end the tracker.
  if (const auto report = onChange) {
    report(current);
  }
}

std::vector<Rect> SettingsWindowTracker::settingsWindows() const {
  const auto& screens = services_.menuBar.screens.screens().get();
  const auto running = services_.menuBar.workspace.runningApplications();
  const auto settings =
      std::ranges::find(running, std::string(settingsBundleID), &RunningApplication::bundleID);
  std::vector<Rect> found;
  if (screens.empty() || settings == running.end()) {
    return found;
  }
  const double top = screens.front().frame.maxY();
  for (const WindowInfo& window : services_.windowList.onScreenWindows()) {
    if (window.ownerPid == settings->pid && isOrdinary(window)) {
      const Rect& bounds = *window.bounds;
      found.push_back({bounds.x, top - bounds.maxY(), bounds.width, bounds.height});
    }
  }
  return found;
}

std::optional<Rect> SettingsWindowTracker::currentFrame() const {
  const std::vector<Rect> windows = settingsWindows();
  const auto found = std::ranges::find_if(windows, [&](const Rect& window) {
    return std::ranges::none_of(windows, [&](const Rect& other) { return holds(other, window); });
  });
  return found != windows.end() ? std::optional(*found) : std::nullopt;
}

void SettingsWindowTracker::logOnce() const {
  std::ostringstream line;
  line << "System Settings:";
  const auto windows = settingsWindows();
  for (const Rect& window : windows) {
    line << " (" << window.x << ", " << window.y << ", " << window.width << ", " << window.height
         << ")";
  }
  line << (windows.empty() ? " no window" : "");
  logger.info(line.str());
}

}  // namespace plemora
