#include "main/ctl/ctl_commands.h"

#include <algorithm>
#include <cstddef>

namespace plemora {

namespace {

constexpr std::string_view volumeForms =
    "VOLUME is a percentage (40%), a fraction (0.4; 1 is full), or a change of the present\n"
    "volume (+5%, -5%, +0.05), which stops at 0% and 100%.\n";

constexpr std::string_view listForms =
    "  --json   print JSON, for programs\n"
    "  --ids    print the ids only, one a line\n";

constexpr CtlCommand commands[] = {
    {CtlVerb::list, "list", "", 0, 0, true, "the apps that play, or did so lately",
     "VOLUME is the position of the app's own slider. OUTPUT is \"default\" for an app that\n"
     "follows the default device, else the device chosen for it.\n"},
    {CtlVerb::devices, "devices", "", 0, 0, true, "the output devices",
     "A star marks the default device.\n"},
    {CtlVerb::volume, "volume", "APP VOLUME", 2, 2, false, "set an app's volume",
     "A volume above 0 also unmutes the app.\n"},
    {CtlVerb::mute, "mute", "APP", 1, 1, false, "silence an app and keep its volume", ""},
    {CtlVerb::unmute, "unmute", "APP", 1, 1, false, "let it be heard again", ""},
    {CtlVerb::toggle, "toggle", "APP", 1, 1, false, "mute it if it is not muted, else unmute it",
     ""},
    {CtlVerb::output, "output", "APP DEVICE|default", 2, 2, false,
     "play an app on a device of its own",
     "\"default\" lets it follow the default device again.\n"},
    {CtlVerb::master, "master", "[VOLUME|mute|unmute]", 0, 1, false,
     "print or set the default device's volume",
     "Without an operand it prints the volume. A volume above 0 also unmutes.\n"},
    {CtlVerb::defaultOutput, "default-output", "DEVICE", 1, 1, false, "make a device the default",
     ""},
    {CtlVerb::watch, "watch", "", 0, 0, false, "show apps and their levels live, until Ctrl-C",
     "IN is the peak of what the app plays, OUT of what is heard of it. \"direct\" marks an app\n"
     "that plays untouched (full volume, on its own device), so that nothing is measured.\n"
     "When the output is no terminal, it prints a line for each change instead.\n"},
    {CtlVerb::status, "status", "[APP]", 0, 1, false, "say what is heard of each app, and why not",
     "Lists everything an app's sound passes on its way (its mute, its level, its route, the\n"
     "device's mute and volume, the permission to capture) and names what silences it.\n"},
    {CtlVerb::help, "help", "[COMMAND]", 0, 1, false, "explain a command", ""},
};

constexpr std::string_view matchingNote =
    "APP and DEVICE are an id, a name, or the beginning of one that no other has; upper and lower\n"
    "case are the same. Put quotes around names with blanks.\n";

constexpr std::string_view exitNote =
    "Exit status: 0 done; 1 failed; 2 wrong arguments, unknown or ambiguous name; 3 plemora is "
    "not\n"
    "running; 4 it has no sound server; 5 there is no session bus.\n";

bool takes(const CtlCommand& command, std::string_view operand) {
  return command.operands.find(operand) != std::string_view::npos;
}

}  // namespace

std::span<const CtlCommand> ctlCommands() {
  return commands;
}

const CtlCommand* findCtlCommand(std::string_view name) {
  const auto found = std::find_if(std::begin(commands), std::end(commands),
                                  [&](const CtlCommand& command) { return command.name == name; });
  return found == std::end(commands) ? nullptr : found;
}

const CtlCommand& ctlCommand(CtlVerb verb) {
  return *std::find_if(std::begin(commands), std::end(commands),
                       [&](const CtlCommand& command) { return command.verb == verb; });
}

std::string ctlHelp() {
  std::string text =
      "usage: plemoractl COMMAND [OPERANDS]\n\nControls the volumes of the running plemora.\n\n";
  constexpr std::size_t column = 37;
  for (const CtlCommand& command : commands) {
    std::string line = "  " + std::string(command.name) + " " + std::string(command.operands);
    line.resize(std::max(column, line.size() + 2), ' ');
    text += line + std::string(command.summary) + "\n";
  }
  text += "\n" + std::string(matchingNote) + std::string(volumeForms) + "\nOptions:\n";
  text += "  --json, --ids   with list and devices: for programs\n";
  text += "  -h, --help      this text; after a command: about that command\n";
  text += "  --version       the version\n\n";
  text += exitNote;
  return text;
}

std::string ctlHelp(const CtlCommand& command) {
  std::string text = "usage: plemoractl " + std::string(command.name);
  text += command.operands.empty() ? "" : " " + std::string(command.operands);
  text += command.printsLists ? " [--json|--ids]" : "";
  text += "\n\n" + std::string(command.name) + ": " + std::string(command.summary) + ".\n";
  text += command.details;
  if (takes(command, "APP") || takes(command, "DEVICE")) {
    text += matchingNote;
  }
  if (takes(command, "VOLUME")) {
    text += volumeForms;
  }
  if (command.printsLists) {
    text += "\n" + std::string(listForms);
  }
  return text;
}

}  // namespace plemora
