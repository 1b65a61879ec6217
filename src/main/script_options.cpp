#include "main/script_options.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace plemora {

namespace {

struct NamedAction {
  std::string_view argument;
  ScriptAction action;
};

// Of several, the first here counts.
constexpr NamedAction actions[] = {{"--replace-sound", ScriptAction::replaceSound},
                                   {"--restore-sound", ScriptAction::restoreSound},
                                   {"--prime-controls", ScriptAction::primeControls}};

}  // namespace

bool asksForScript(std::span<const std::string> arguments) {
  return std::ranges::any_of(arguments, [](const std::string& argument) {
    return std::ranges::find(actions, argument, &NamedAction::argument) != std::end(actions);
  });
}

std::optional<bool> takeScriptOption(std::span<const std::string> arguments, std::size_t& place,
                                     ScriptOptions& options, std::string& problem) {
  const std::string& argument = arguments[place];
  const auto named = std::ranges::find(actions, argument, &NamedAction::argument);
  if (named != std::end(actions)) {
    options.action = options.action ? std::min(*options.action, named->action) : named->action;
    return true;
  }
  const bool isFolder = argument == "--preferences";
  if (!isFolder && argument != "--preferences-host") {
    return false;
  }
  if (place + 1 == arguments.size() || arguments[place + 1].empty()) {
    problem =
        argument + " needs " + (isFolder ? "a folder" : "this machine's name in it") + " after it";
    return std::nullopt;
  }
  (isFolder ? options.preferences : options.preferencesHost) = arguments[++place];
  return true;
}

}  // namespace plemora
