#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>

namespace plemora {

/// What a script may ask of a run that does nothing else.
enum class ScriptAction { replaceSound, restoreSound, primeControls };

struct ScriptOptions {
  std::optional<ScriptAction> action;          ///< none: this is no such run
  std::optional<std::string> preferences;      ///< folder of the preferences to change
  std::optional<std::string> preferencesHost;  ///< this machine's name in it; none: its id
};

/// Whether one of the arguments asks for such a run, whatever the others say.
bool asksForScript(std::span<const std::string> arguments);

/// Takes the argument at that place if it is one of a script's, with its value, and moves on to the
/// last that it took. False when it is another's; none with a problem when its value is missing.
std::optional<bool> takeScriptOption(std::span<const std::string> arguments, std::size_t& place,
                                     ScriptOptions& options, std::string& problem);

}  // namespace plemora
