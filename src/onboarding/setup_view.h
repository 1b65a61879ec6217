#pragma once

#include <functional>
#include <string>
#include <vector>

#include "base/geometry.h"
#include "base/published.h"
#include "onboarding/setup_state.h"

namespace plemora {

/// One step of setup as it is to be drawn.
struct SetupCard {
  std::string id;  ///< also names its illustration: "audio", "accessibility", "controlCenter",
                   ///< "soundIcon", "loginItem", "trayIcon"
  std::string title;
  std::string line;
  StepStatus status = StepStatus::pending;
  std::string note;         ///< what goes on right now, or what to do; empty: nothing
  std::string buttonTitle;  ///< what begins the step; empty: there is nothing to press
  std::string skipTitle;    ///< a second, quiet button beside it; empty: none
  bool isButtonEnabled = true;

  /// What assistive technology calls the button: others may have the same title.
  std::string buttonLabel() const { return buttonTitle + ": " + title; }

  bool operator==(const SetupCard&) const = default;
};

/// All of the setup window.
struct SetupPage {
  std::string title;
  std::string line;
  std::vector<SetupCard> cards;
  std::size_t doneCards = 0;
  /// What is left to say once nothing is left to do. The title is shown large, in place of the
  /// cards.
  bool isComplete = false;
  std::vector<std::string> completeLines;
  std::string showTitle;    ///< shows where the program is; empty: no such button
  std::string finishTitle;  ///< closes the window, at any time

  bool operator==(const SetupPage&) const = default;
};

/// The content of the setup window, and what happens when the user acts on it. Whoever runs setup
/// assigns the page and the callbacks; the view that draws it calls the latter. Main thread.
struct SetupView {
  Published<SetupPage> page;

  // With the card's id.
  std::function<void(const std::string& id)> onButton;
  std::function<void(const std::string& id)> onSkip;
  /// The button of that card lies there now, in points of the window's content, y down. Empty: it
  /// is not to be seen.
  std::function<void(const std::string& id, const Rect& frame)> onButtonFrame;
  std::function<void()> onShow;
  std::function<void()> onFinish;
};

}  // namespace plemora
