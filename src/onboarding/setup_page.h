#pragma once

#include <optional>
#include <string>

#include "onboarding/setup_state.h"
#include "onboarding/setup_view.h"

namespace plemora {

/// What setup says on every platform.
namespace setup_texts {
inline constexpr const char* audioTitle = "Allow audio access";
inline constexpr const char* audioLine =
    "Lets Plemora turn each app up or down. Nothing is recorded.";
inline constexpr const char* windowTitle = "Set Up Plemora";
inline constexpr const char* windowLine = "A few steps, and every app has a volume of its own.";
inline constexpr const char* completeTitle = "You're all set";
inline constexpr const char* completeLine =
    "Set the volume of every app, right from the Sound menu.";
inline constexpr const char* showTitle = "Show Me";
inline constexpr const char* finishLaterTitle = "Finish Later";
inline constexpr const char* finishTitle = "Done";
}  // namespace setup_texts

/// Setup as it is to be drawn. isSoundReplaced: whether Sound really made room in Control Center;
/// isControlCenterLate: whether Control Center has been waited for in vain.
SetupPage setupPage(const SetupState& state, bool isSoundReplaced,
                    bool isControlCenterLate = false);

/// As a card's id says; none for what is no such id.
std::optional<SetupStep> setupStep(const std::string& cardID);

}  // namespace plemora
