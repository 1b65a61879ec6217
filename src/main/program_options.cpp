#include "main/program_options.h"

#include <cstddef>

namespace plemora {

std::optional<ProgramOptions> parseProgramOptions(std::span<const std::string> arguments,
                                                  std::string& problem) {
  ProgramOptions options;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    if (argument == "--no-ui") {
      options.withoutWindow = true;
    } else if (argument == "--help" || argument == "-h") {
      options.wantsHelp = true;
    } else if (argument == "--version") {
      options.wantsVersion = true;
    } else if (argument == "-demo") {
      if (++i == arguments.size()) {
        problem = "-demo needs a JSON configuration after it, in quotes";
        return std::nullopt;
      }
    } else if (argument == "--screenshots") {
      if (++i == arguments.size() || arguments[i].empty()) {
        problem = "--screenshots needs the folder to draw the pictures into after it";
        return std::nullopt;
      }
      options.screenshots = arguments[i];
    } else if (argument != "--log-levels") {
      problem = (argument.starts_with('-') ? "unknown option \"" : "unexpected argument \"") +
                argument + "\"";
      return std::nullopt;
    }
  }
  return options;
}

std::string programHelp() {
  return "usage: plemora [OPTIONS]\n"
         "\n"
         "Gives every app its own volume, mute and output device. One instance runs in a user\n"
         "session; a second start hands its arguments to the first. plemoractl controls it.\n"
         "\n"
         "  --no-ui            run without a window, as a service\n"
         "  --log-levels       log what each tapped app plays, every 2 seconds\n"
         "  -demo JSON         show prepared rows and touch no sound\n"
         "  --screenshots DIR  draw the panel in all its states into DIR, and end; needs no "
         "display\n"
         "  -h, --help         this text\n"
         "  --version          the version\n"
         "\n"
         "Exit status: 0 ended, or handed over to the running instance; 1 failed; 2 wrong "
         "options.\n";
}

}  // namespace plemora
