#pragma once

#include "adapters/linux/dbus/mixer_client.h"
#include "main/ctl/ctl_arguments.h"
#include "main/ctl/ctl_output.h"

namespace plemora {

/// Does what a command line of plemoractl asks for; results go to standard output, messages to
/// standard error. Needs a QCoreApplication.
class CtlProgram {
 public:
  CtlProgram(MixerClient& client, OutputStyle style) : client_(client), style_(style) {}

  /// Any verb but help. Throws ClientError.
  CtlExit run(const CtlArguments& arguments);

 private:
  CtlExit list(const CtlArguments& arguments) const;
  CtlExit devices(const CtlArguments& arguments) const;
  CtlExit changeApp(const CtlArguments& arguments);
  CtlExit setOutput(const AppState& app, const std::string& device);
  CtlExit master(const CtlArguments& arguments);
  CtlExit setDefaultDevice(const std::string& device);
  CtlExit status(const std::string& app);
  /// None, after a message, when the text names no app or more than one.
  const AppState* findApp(const std::string& text) const;
  const DeviceState* findDevice(const std::string& text) const;

  MixerClient& client_;
  OutputStyle style_;
  MixerState state_;
};

/// "watch": until a signal ends it, or the mixer.
CtlExit watchMixer(MixerClient& client, const OutputStyle& style, bool isLive);

/// A message of plemoractl on standard error.
void printError(const std::string& message);

}  // namespace plemora
