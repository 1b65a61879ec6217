#pragma once

#include <functional>
#include <string_view>

#include "platform/consent_service.h"
#include "platform/main_queue.h"

namespace plemora {

/// Whether this program may capture the audio of other apps. Holds no state: the answer can
/// change at any time in the system's settings. Main thread; both services outlive it.
class AudioPermission {
 public:
  enum class Status { granted, denied, unknown };

  /// Where the user changes the decision.
  static constexpr std::string_view settingsURL =
      "x-apple.systempreferences:com.apple.preference.security?Privacy_ScreenCapture";

  AudioPermission(ConsentService& consent, MainQueue& mainQueue)
      : consent_(consent), mainQueue_(mainQueue) {}

  /// The current answer, without asking the user; unknown when nothing is decided or there is
  /// nobody to ask.
  Status status();

  /// Asks the user if nothing is decided yet. The completion runs later on the main queue; with
  /// false when there is nobody to ask.
  void request(std::function<void(bool granted)> completion);

 private:
  ConsentService& consent_;
  MainQueue& mainQueue_;
};

/// "granted", "denied" or "unknown".
std::string_view statusName(AudioPermission::Status status);

}  // namespace plemora
