#pragma once

#include <span>
#include <string>
#include <string_view>

namespace plemora {

enum class CtlVerb {
  list,
  devices,
  volume,
  mute,
  unmute,
  toggle,
  output,
  master,
  defaultOutput,
  watch,
  status,
  help,
};

/// How plemoractl ends. Scripts rely on these numbers.
enum class CtlExit {
  success = 0,
  failure = 1,        ///< the program refused, or something broke
  usage = 2,          ///< wrong arguments; unknown or ambiguous app or device
  notRunning = 3,     ///< no running instance
  noSoundServer = 4,  ///< it runs, but has no sound server
  noSessionBus = 5,   ///< nothing can be asked
};

/// One command of plemoractl: what it takes and what its help says.
struct CtlCommand {
  CtlVerb verb;
  std::string_view name;
  std::string_view operands;  ///< as shown in the help: "APP VOLUME"
  std::size_t fewestOperands;
  std::size_t mostOperands;
  bool printsLists;  ///< knows --json and --ids
  std::string_view summary;
  std::string_view details;
};

/// All commands, in the order of the help.
std::span<const CtlCommand> ctlCommands();

/// None for a name that is no command.
const CtlCommand* findCtlCommand(std::string_view name);
const CtlCommand& ctlCommand(CtlVerb verb);

/// The text of "plemoractl --help".
std::string ctlHelp();

/// The text of "plemoractl COMMAND --help".
std::string ctlHelp(const CtlCommand& command);

}  // namespace plemora
