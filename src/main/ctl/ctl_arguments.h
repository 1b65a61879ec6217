#pragma once

#include <optional>
#include <span>
#include <string>

#include "main/ctl/ctl_commands.h"
#include "main/ctl/volume_text.h"

namespace plemora {

/// A command line of plemoractl, understood.
struct CtlArguments {
  CtlVerb verb = CtlVerb::list;
  bool wantsHelp = false;     ///< about the verb; verb help: about plemoractl
  bool wantsVersion = false;  ///< and nothing else
  bool json = false;
  bool ids = false;
  std::string app;     ///< as typed; empty when not given
  std::string device;  ///< as typed; empty when not given, or for output: the default
  std::optional<VolumeRequest> volume;
  std::optional<bool> muted;  ///< of the default device
};

/// Reads the arguments that follow the name of the program. None when they are wrong; problem
/// then says what and how it is right. Options may stand anywhere up to "--"; "-5%" is a volume.
std::optional<CtlArguments> parseCtlArguments(std::span<const std::string> arguments,
                                              std::string& problem);

}  // namespace plemora
