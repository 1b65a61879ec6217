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
  bool opensPanel = false;                 ///< a URL among the arguments asks for it
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
