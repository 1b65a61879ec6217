#pragma once

#include <algorithm>
#include <array>
#include <string_view>

namespace plemora {

/// A module that the system itself has for Control Center.
struct StageModule {
  std::string_view id;    ///< as the layout names it
  std::string_view name;  ///< as the user reads it
  std::string_view size;  ///< of a tile fresh from the gallery
  bool hasSlider = false;
};

inline constexpr std::array<StageModule, 12> stageModules{{
    {"WiFi", "Wi-Fi", "rect2x1"},
    {"Bluetooth", "Bluetooth", "square1x1"},
    {"AirDrop", "AirDrop", "square1x1"},
    {"FocusModes", "Focus", "rect2x1"},
    {"StageManager", "Stage Manager", "square1x1"},
    {"ScreenMirroring", "Screen Mirroring", "square1x1"},
    {"Display", "Display", "rect4x1", true},
    {"Sound", "Sound", "rect4x1", true},
    {"NowPlaying", "Now Playing", "square2x2"},
    {"Battery", "Battery", "square1x1"},
    {"KeyboardBrightness", "Keyboard Brightness", "square1x1"},
    {"Weather", "Weather", "rect2x1"},
}};

/// Null: the system has no such module.
inline const StageModule* findStageModule(std::string_view id) {
  const auto* found = std::ranges::find(stageModules, id, &StageModule::id);
  return found == stageModules.end() ? nullptr : found;
}

}  // namespace plemora
