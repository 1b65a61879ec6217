#pragma once

#include <optional>
#include <span>
#include <string>

#include "main/script_options.h"

namespace plemora {

/// A command line of plemora, understood. Options that the engine reads by itself (--log-levels,
/// -demo) are only checked here.
struct ProgramOptions {
  bool withoutWindow = false;
  bool wantsHelp = false;
  bool wantsVersion = false;
  bool setsUp = false;                     ///< shows setup, rather than the panel
  bool opensPanel = false;                 ///< at once, if setup is not shown
  bool hasURL = false;                     ///< of the program
  bool hasPanelURL = false;                ///< one that asks for the panel
  std::optional<std::string> screenshots;  ///< folder to draw pictures of the panel into
  ScriptOptions script;
};

/// Reads the arguments that follow the name of the program. None when they are wrong; problem
/// then says what.
std::optional<ProgramOptions> parseProgramOptions(std::span<const std::string> arguments,
                                                  std::string& problem);

/// The text of "plemora --help".
std::string programHelp();

}  // namespace plemora
