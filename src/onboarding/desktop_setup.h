#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "audio/audio_permission.h"
#include "onboarding/setup_state.h"
#include "onboarding/setup_view.h"
#include "onboarding/setup_window.h"
#include "platform/main_queue.h"

namespace plemora {

class LoginItem;

/// The world as setup needs it on a desktop without Control Center. All of it outlives setup.
struct DesktopSetupServices {
  MenuBarServices menuBar;
  ConsentService& consent;
  LoginItem& loginItem;
  /// Makes what draws the window, opaque; the view outlives it. Null: it cannot be shown now.
  SetupWindow::MakeContent makeContent;
  /// What the user can do while the sound is not the program's to change.
  std::function<std::string()> audioAdvice;
  /// Whether somebody shows the program's icon in a tray; none while that is not known yet.
  std::function<std::optional<bool>()> showsTrayIcon;
  /// What the user can do where nobody does.
  std::string trayAdvice;
};

/// Setup on a desktop without Control Center: sound, the start at login, and the icon where the
/// desktop hides it. What the desktop lacks is done from the start. Main thread.
class DesktopSetup {
 public:
  /// Bools in the settings: setup came to its end; the user does not want the login item.
  static constexpr const char* completeKey = "didCompleteSetup";
  static constexpr const char* skippedLoginItemKey = "didSkipLoginItem";

  explicit DesktopSetup(DesktopSetupServices services);
  ~DesktopSetup();
  DesktopSetup(const DesktopSetup&) = delete;
  DesktopSetup& operator=(const DesktopSetup&) = delete;

  /// Shows the panel, once setup is closed for it.
  std::function<void()> onShowPanel;

  /// Whether it was ever brought to its end.
  bool wasCompleted() const;
  /// Opens the window, or brings it forward. False: it cannot be shown.
  bool show();
  bool isShown() const { return window_.isShown(); }
  /// Closes the window, however far it has come.
  void finish();

  const SetupState& state() const { return state_; }

 private:
  static constexpr double pollInterval = 0.4;  // seconds

  void refresh();
  void refreshLoginItem();
  void refreshTrayIcon();
  void startAtLogin();
  void skipLoginItem();
  bool isComplete() const;
  SetupPage page() const;
  SetupCard audioCard() const;
  SetupCard loginItemCard() const;
  SetupCard trayIconCard() const;

  const DesktopSetupServices services_;
  AudioPermission permission_;
  SetupState state_;
  StepStatus loginItem_ = StepStatus::pending;
  StepStatus trayIcon_ = StepStatus::pending;
  bool isTrayIconHidden_ = false;  ///< or was, since the window is open: the card stays
  bool isLoginItemSkipped_ = false;
  std::string loginItemProblem_;  ///< of the last attempt; empty: none

  SetupView view_;
  SetupWindow window_;
  Timer poll_;
};

}  // namespace plemora
