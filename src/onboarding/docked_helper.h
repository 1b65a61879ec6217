#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "base/geometry.h"
#include "base/published.h"
#include "controlcenter/control_center_locator.h"
#include "onboarding/helper_state.h"
#include "onboarding/helper_view.h"
#include "onboarding/onboarding_services.h"
#include "onboarding/settings_window_tracker.h"
#include "platform/main_queue.h"
#include "platform/screens.h"

namespace plemora {

class GlassPanel;
class HelperPanel;
class RipplePanel;

/// A small panel that tells what to do for a step of setup. It drops out of the step's button, then
/// stands beside the window of System Settings, or beside Control Center, and goes where that goes.
/// Without System Settings it waits for it at the bottom of the screen. Main thread.
class DockedHelper {
 public:
  static constexpr double successTime = 1.2;  ///< seconds for which success is shown

  /// The ripple outlives it.
  DockedHelper(const OnboardingServices& services, RipplePanel& ripple);
  ~DockedHelper();
  DockedHelper(const DockedHelper&) = delete;
  DockedHelper& operator=(const DockedHelper&) = delete;

  /// What the helper has to say. Where it stands and what it sees is its own to write; who asks the
  /// system may write awaitingApproval.
  HelperState state;

  std::function<void()> onBack;        ///< the user gives up
  std::function<void()> onDone;        ///< the user says that it is done
  std::function<void()> onAskInstead;  ///< the system is to ask; awaitingApproval is set already

  /// Shows the helper for a step, growing out of a rectangle (global, y up). One that is shown
  /// already starts anew, and what it was to run at its end never runs. Without content for the
  /// panel nothing happens.
  void present(HelperState::Kind from, const Rect& rect);

  /// The window of System Settings is there now (global, y up); none: it is gone.
  void settingsMoved(const std::optional<Rect>& frame);
  /// The content wants to be so high, in points.
  void heightChanged(double height);
  /// Looks at Control Center from now on, ten times a second.
  void startControlCenterTracking();
  void updateControlCenter();

  /// Shows success for a while and runs the action then; at once when the helper is not to be seen.
  /// Never when it leaves or is presented anew before that. Calls meanwhile are ignored.
  void succeed(std::function<void()> then);

  /// Goes back to where it came from, and runs the completion once it is gone: at once when there
  /// is nothing to be seen. Ignored, with its completion, while it leaves already.
  void leave(std::function<void()> completion = {});

  /// From present() on, until it has left; also while it is hidden behind another application.
  bool isPresented() const { return panel_ != nullptr; }
  bool isDocked() const { return isDocked_; }
  bool isLeaving() const { return isLeaving_; }

  /// Where the helper is to stand for a window of System Settings there; tells the state of the
  /// side.
  Rect dockFrame(const Rect& under);

  /// Null: it is not presented.
  GlassPanel* panel() const;

 private:
  void connectView();
  void resetState(HelperState::Kind kind);
  void updatePage();
  void followSettings();
  void stopFollowing();
  void activated(std::int32_t pid);
  void standAlone();
  Rect controlCenterFrame(const std::optional<ControlCenterWindow>& panel, bool isEditing) const;
  void dragIcon();
  void end(const std::function<void()>& completion);
  const std::vector<Screen>& screens() const;

  const OnboardingServices services_;
  RipplePanel& ripple_;
  HelperView view_;
  std::vector<Subscription> stateSubscriptions_;
  std::unique_ptr<HelperPanel> panel_;  // null: it is not presented
  SettingsWindowTracker tracker_;

  Rect origin_;  // that the panel was presented at
  double height_ = 0;
  std::optional<Rect> settings_;  // where System Settings was last
  bool isDocked_ = false;
  bool isLeaving_ = false;
  std::optional<double> editEnd_;  // media time at which Control Center's edit mode was left

  Subscription activationObserver_;
  Timer fallbackWork_;
  Timer controlCenterTimer_;
  Timer success_;
  std::shared_ptr<int> trip_;  // drags hold it weakly; another one for every presentation
};

}  // namespace plemora
