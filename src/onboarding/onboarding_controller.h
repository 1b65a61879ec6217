#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "base/geometry.h"
#include "base/published.h"
#include "controlcenter/delayed_work.h"
#include "onboarding/helper_state.h"
#include "onboarding/onboarding_services.h"
#include "onboarding/setup_facts.h"
#include "onboarding/setup_state.h"
#include "onboarding/setup_view.h"
#include "onboarding/setup_window.h"
#include "platform/main_queue.h"

namespace plemora {

class DockedHelper;
class MixerModel;
class StatusItemController;

/// Leads the user through setup: owns its window, begins each step, sends the user to the place in
/// the system's settings, looks now and then whether it is done, and ends by pointing at the
/// program's icon. What it shows is made when it is first needed. Main thread.
class OnboardingController {
 public:
  static constexpr const char* accessibilitySettingsURL =
      "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility";
  static constexpr const char* menuBarSettingsURL =
      "x-apple.systempreferences:com.apple.ControlCenter-Settings.extension";
  static constexpr const char* soundReplacedKey = "soundReplaced";        ///< Bool in the settings
  static constexpr const char* didCompleteSetupKey = "didCompleteSetup";  ///< Bool in the settings

  // Seconds.
  static constexpr double pollInterval = 0.4;
  static constexpr double restartTimeout = 20;  ///< for Control Center to be back with its tiles
  static constexpr double testTime = 4;         ///< of each helper that testHelper() presents
  static constexpr double testPause = 1;        ///< between two of them

  /// All of it outlives the controller.
  OnboardingController(MixerModel& model, StatusItemController& statusItem,
                       OnboardingServices services);
  ~OnboardingController();
  OnboardingController(const OnboardingController&) = delete;
  OnboardingController& operator=(const OnboardingController&) = delete;

  SetupState state;

  // What the view calls.
  std::function<void()> onAudio;
  std::function<void()> onAccessibility;
  std::function<void()> onControlCenter;
  std::function<void()> onSoundIcon;

  /// Replaces Sound; false: that failed, and nothing has changed. At first the layout's own.
  std::function<bool()> replaceSound;
  /// The user has put the program's tiles into Control Center, in its edit mode. May be empty.
  std::function<void()> onTilesAddedByHand;
  /// Setup has ended with everything done. May be empty.
  std::function<void()> onComplete;

  /// The program's tiles are in the layout: makes Control Center show them, unless it does, and
  /// calls done once that is over, with success or without. Empty: nothing is to be done.
  std::function<void(std::function<void()> done)> prepareControls;

  /// Shows the setup window, afresh unless it is on screen.
  void show();
  /// Brings the window forward again, if it is there.
  void bringBack();

  void startAudio();
  void startAccessibility();
  void startControlCenter();
  /// The helper leads the user through Control Center's own edit mode.
  void startGuidedControlCenter();
  void startSoundIcon();
  /// The user keeps Apple's icon.
  void skipSoundIcon();

  // The steps are done.
  void audioGranted();
  void completeAccessibility();
  void completeControlCenter();
  void completeSoundIcon();

  /// Reads every step from the system again; the first that is not done waits for the user then.
  void refreshState();
  void startPolling();
  bool isPolling() const { return poll_ != nullptr; }
  /// The user is back without having finished: what goes on waits for the user again.
  void resetInProgressSteps();
  /// Closes the window, remembers it when all is done, and points at the program's icon.
  void finish();
  /// Points at the program's icon for a while.
  void pointAtIcon();
  /// Presents the helper of each kind for a few seconds.
  void testHelper();
  /// Takes all of it away at once: no window, timer or monitor is left.
  void tearDown();

  const SetupWindow& window() const { return *window_; }
  SetupView& view() { return view_; }
  /// Made if there is none yet.
  DockedHelper& helper();

 private:
  struct Guides;

  bool replaceByLayout();
  void wireView();
  void observeState();
  void updatePage();
  void setStatus(SetupStep step, StepStatus status);
  bool isReached(SetupStep step) const;
  bool isInProgress(SetupStep step) const;
  void refreshControlCenter();
  void activateNextStep();
  void buttonMoved(const std::string& id, const Rect& inContent);
  void publishButtonFrames();
  Rect buttonFrame(SetupStep step);

  Guides& guides();
  bool isHelperPresented() const;
  void presentHelper(SetupStep step);
  void sendToSettings(SetupStep step, const std::string& url);
  void dismissHelper();
  void wentBack();
  void saidDone();
  void askInstead();
  void testNext(std::size_t index);
  void cancelTest();

  void poll();
  void checkReplacement();
  void prepare();
  void complete(SetupStep step);
  void completed(SetupStep step);
  void rememberReplacement();
  void endFlow();
  void makeWindow();
  void windowWillClose();

  MixerModel& model_;
  StatusItemController& statusItem_;
  const OnboardingServices services_;
  const SetupFacts facts_{services_};
  AudioPermission permission_;
  SetupView view_;
  std::map<SetupStep, Rect> buttonsInContent_;  // y down
  bool isSoundReplaced_ = false;                // as the layout was last seen
  double replacedAt_ = 0;                       // media time
  std::set<std::int32_t> oldControlCenters_;    // those that were to end with the replacement
  bool areControlsPrepared_ = false;
  bool isControlCenterLate_ = false;  // did not come back in time
  std::unique_ptr<SetupWindow> window_;
  std::unique_ptr<Guides> guides_;
  Timer poll_;
  std::optional<DelayedWork> tests_;
  bool isTesting_ = false;
  std::vector<Subscription> cancellables_;
  std::shared_ptr<int> life_ = std::make_shared<int>(0);  // expires for answers that come late
};

}  // namespace plemora
