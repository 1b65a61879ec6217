#include "main/linux_program.h"

#include <unistd.h>

#include <utility>

#include "base/log.h"

namespace plemora {

namespace {

constexpr Logger logger("program");

/// How long a sound server may take to answer before its absence is worth a message.
constexpr double connectionPatience = 2.0;

}  // namespace

LinuxProgram::LinuxProgram(const std::vector<std::string>& arguments, std::string version)
    : system_("/", version),
      defaults_(FileDefaults::defaultFile(), arguments,
                queues_.makeQueue("com.quorvane.mixer.settings")),
      workspace_(DesktopPaths::fromEnvironment(), clients_),
      audio_(mainQueue_, *clients_),
      model_(MixerServices{audio_.properties(), audio_.graph(), mainQueue_, queues_, clock_,
                           workspace_, defaults_, audio_.consent(), system_, arguments, getpid()}),
      service_(mainQueue_, model_, std::move(version)) {
  service_.setConnected(audio_.isConnected());
  audio_.setConnectionHandler([this](bool connected) { connectionChanged(connected); });
  patience_ = mainQueue_.after(connectionPatience, [this] {
    if (!audio_.isConnected()) {
      logger.warning("no sound server answers (is PipeWire running?); waiting for one");
    }
  });
}

void LinuxProgram::connectionChanged(bool connected) {
  if (connected) {
    logger.notice("connected to the sound server");
  } else {
    logger.warning("the sound server is gone; waiting for it to come back");
  }
  // The permission is the server's to give, so it is asked for anew.
  service_.reload();
  service_.setConnected(connected);
}

}  // namespace plemora
