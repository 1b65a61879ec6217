#pragma once

#include <array>
#include <map>

#include "base/geometry.h"
#include "base/published.h"

namespace plemora {

enum class StepStatus {
  pending,     ///< not reached yet
  active,      ///< waits for the user
  inSettings,  ///< the user was sent to the system's settings
  working,     ///< the program is at it
  done,
};

/// In the order in which they are shown.
enum class SetupStep { audio, accessibility, controlCenter, soundIcon };

inline constexpr std::array<SetupStep, 4> setupSteps{
    SetupStep::audio, SetupStep::accessibility, SetupStep::controlCenter, SetupStep::soundIcon};

/// How far setup has come. Main thread.
struct SetupState {
  Published<StepStatus> audio{StepStatus::pending};
  Published<StepStatus> accessibility{StepStatus::pending};
  Published<StepStatus> controlCenter{StepStatus::pending};
  Published<StepStatus> soundIcon{StepStatus::pending};
  /// Where the button of each step is on the screens, global, y up; as the view reports it.
  Published<std::map<SetupStep, Rect>> buttonFrames;
  /// Whether the step of Control Center is offered.
  Published<bool> supportsControlCenter{true};

  Published<StepStatus>& status(SetupStep step) {
    switch (step) {
      case SetupStep::audio:
        return audio;
      case SetupStep::accessibility:
        return accessibility;
      case SetupStep::controlCenter:
        return controlCenter;
      case SetupStep::soundIcon:
        break;
    }
    return soundIcon;
  }

  StepStatus statusOf(SetupStep step) const {
    switch (step) {
      case SetupStep::audio:
        return audio.get();
      case SetupStep::accessibility:
        return accessibility.get();
      case SetupStep::controlCenter:
        return controlCenter.get();
      case SetupStep::soundIcon:
        break;
    }
    return soundIcon.get();
  }

  /// All four, also those that are not offered: who does not offer a step says that it is done.
  bool isComplete() const {
    return soundIcon.get() == StepStatus::done && controlCenter.get() == StepStatus::done &&
           accessibility.get() == StepStatus::done && audio.get() == StepStatus::done;
  }
};

}  // namespace plemora
