#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "base/geometry.h"
#include "onboarding/onboarding_services.h"
#include "platform/main_queue.h"

namespace plemora {

/// Watches where the window of System Settings is. Main thread.
class SettingsWindowTracker {
 public:
  /// Bundle identifier of System Settings.
  static constexpr const char* settingsBundleID = "com.apple.systempreferences";

  explicit SettingsWindowTracker(const OnboardingServices& services);
  ~SettingsWindowTracker();
  SettingsWindowTracker(const SettingsWindowTracker&) = delete;
  SettingsWindowTracker& operator=(const SettingsWindowTracker&) = delete;

  /// Called with the frame whenever it is another than before; none: the window is gone. May stop
  /// or destroy the tracker.
  std::function<void(const std::optional<Rect>&)> onChange;
  /// As last reported; none at first.
  std::optional<Rect> frame;

  /// Looks for the window from now on, 60 times a second, and reports it anew.
  void start();
  void stop();

  /// Where the window is now (global, y up): the frontmost ordinary one that is no sheet over
  /// another. None while System Settings does not run or shows none.
  std::optional<Rect> currentFrame() const;

 private:
  std::vector<Rect> settingsWindows() const;
  void tick();
  void logOnce() const;

  const OnboardingServices services_;
  Timer timer_;
  std::vector<Timer> logTimers_;
};

}  // namespace plemora
