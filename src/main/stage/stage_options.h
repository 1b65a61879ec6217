#pragma once

#include <optional>
#include <span>
#include <string>

#include "main/stage/stage_wallpaper.h"

namespace plemora {

/// A command line of plemora-stage, understood.
struct StageOptions {
  enum class Audio { simulated, pipewire };

  bool wantsHelp = false;
  bool isOffscreen = false;
  std::optional<std::string> scenario;         ///< file
  std::optional<std::string> screenshots;      ///< folder for those that the scenario takes
  std::optional<std::string> tour;             ///< folder for the pictures of a tour
  std::optional<std::string> skin;             ///< folder for the pictures of the module's layers
  std::optional<std::string> preferences;      ///< folder for what is to survive the program
  std::optional<std::string> preferencesHost;  ///< this machine's name in file names there
  Audio audio = Audio::simulated;
  std::optional<bool> isDark;
  std::optional<StageWallpaper> wallpaper;
  std::optional<double> scale;  ///< pixels to the point of the stage's screens
  double speed = 1;             ///< of time, in the window
};

/// Reads the arguments that follow the name of the program. None when they are wrong; problem then
/// says what, and what is allowed.
std::optional<StageOptions> parseStageOptions(std::span<const std::string> arguments,
                                              std::string& problem);

/// The text of "plemora-stage --help".
std::string stageHelp();

}  // namespace plemora
