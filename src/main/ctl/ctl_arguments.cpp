#include "main/ctl/ctl_arguments.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace plemora {

namespace {

bool looksLikeOption(std::string_view text) {
  const bool isChange = text.size() > 1 && (text[1] == '.' || (text[1] >= '0' && text[1] <= '9'));
  return text.size() > 1 && text.front() == '-' && !isChange;
}

// Stores the operands where the verb keeps them.
bool takeOperands(const std::vector<std::string>& operands, CtlArguments& result,
                  std::string& problem) {
  const auto takeVolume = [&](const std::string& text) {
    result.volume = parseVolume(text, problem);
    return result.volume.has_value();
  };
  switch (result.verb) {
    case CtlVerb::volume:
      result.app = operands[0];
      return takeVolume(operands[1]);
    case CtlVerb::output:
      result.app = operands[0];
      result.device = operands[1] == "default" ? "" : operands[1];
      if (operands[1].empty()) {
        problem = "the name of the device is empty: name one, or write \"default\"";
        return false;
      }
      return true;
    case CtlVerb::defaultOutput:
      result.device = operands[0];
      return true;
    case CtlVerb::master:
      if (operands.empty()) {
        return true;
      }
      if (operands[0] == "mute" || operands[0] == "unmute") {
        result.muted = operands[0] == "mute";
        return true;
      }
      return takeVolume(operands[0]);
    default:
      result.app = operands.empty() ? "" : operands[0];
      return true;
  }
}

bool takeHelp(const std::vector<std::string>& operands, CtlArguments& result,
              std::string& problem) {
  result.wantsHelp = true;
  if (operands.empty()) {
    return true;
  }
  const CtlCommand* about = findCtlCommand(operands[0]);
  if (about == nullptr) {
    problem = "there is no command \"" + operands[0] + "\"";
    return false;
  }
  result.verb = about->verb;
  return true;
}

}  // namespace

std::optional<CtlArguments> parseCtlArguments(std::span<const std::string> arguments,
                                              std::string& problem) {
  CtlArguments result;
  const CtlCommand* command = nullptr;
  std::vector<std::string> operands;
  bool optionsEnded = false;
  for (const std::string& argument : arguments) {
    if (!optionsEnded && argument == "--") {
      optionsEnded = true;
    } else if (!optionsEnded && (argument == "--help" || argument == "-h")) {
      result.wantsHelp = true;
    } else if (!optionsEnded && argument == "--version") {
      result.wantsVersion = true;
    } else if (!optionsEnded && argument == "--json") {
      result.json = true;
    } else if (!optionsEnded && argument == "--ids") {
      result.ids = true;
    } else if (!optionsEnded && looksLikeOption(argument)) {
      problem = "unknown option \"" + argument + "\"";
      return std::nullopt;
    } else if (command == nullptr) {
      command = findCtlCommand(argument);
      if (command == nullptr) {
        problem = "there is no command \"" + argument + "\"";
        return std::nullopt;
      }
    } else {
      operands.push_back(argument);
    }
  }
  if (command == nullptr) {
    if (!result.wantsHelp && !result.wantsVersion) {
      problem = "say what to do";
      return std::nullopt;
    }
    result.verb = CtlVerb::help;
    return result;
  }
  result.verb = command->verb;
  if (result.wantsHelp || result.wantsVersion) {
    return result;
  }
  const std::string name(command->name);
  if ((result.json || result.ids) && !command->printsLists) {
    problem = "\"" + name + "\" has no option " + (result.json ? "--json" : "--ids");
    return std::nullopt;
  }
  if (operands.size() < command->fewestOperands || operands.size() > command->mostOperands) {
    const bool few = operands.size() < command->fewestOperands;
    problem =
        "\"" + name + "\" takes " +
        (command->mostOperands == 0 ? "no operands" : std::string(command->operands)) + ", and " +
        (few ? "something is missing" : "\"" + operands[command->mostOperands] + "\" is too much") +
        (few || command->mostOperands == 0 ? "" : " (put quotes around names with blanks)");
    return std::nullopt;
  }
  const bool understood = result.verb == CtlVerb::help ? takeHelp(operands, result, problem)
                                                       : takeOperands(operands, result, problem);
  return understood ? std::optional(result) : std::nullopt;
}

}  // namespace plemora
