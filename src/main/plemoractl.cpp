#include <langinfo.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <QCoreApplication>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "main/ctl/ctl_program.h"

namespace {

using namespace plemora;

OutputStyle outputStyle() {
  OutputStyle style;
  style.utf8 = std::strcmp(nl_langinfo(CODESET), "UTF-8") == 0;
  if (isatty(STDOUT_FILENO) != 1) {
    return style;
  }
  const char* noColour = std::getenv("NO_COLOR");
  const char* terminal = std::getenv("TERM");
  style.colour = (noColour == nullptr || *noColour == '\0') && terminal != nullptr &&
                 std::strcmp(terminal, "dumb") != 0;
  winsize size = {};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0) {
    style.width = size.ws_col;
  }
  return style;
}

CtlExit explainError(const ClientError& error) {
  const std::string what = error.what();
  switch (error.kind) {
    case ClientError::Kind::noSessionBus:
      printError(what +
                 "\nplemora is asked over it; run plemoractl inside the desktop session, or "
                 "set DBUS_SESSION_BUS_ADDRESS");
      return CtlExit::noSessionBus;
    case ClientError::Kind::notRunning:
      printError(what +
                 "; start it with \"plemora --no-ui\" or \"systemctl --user start plemora\"");
      return CtlExit::notRunning;
    case ClientError::Kind::refused:
    case ClientError::Kind::failed:
      break;
  }
  printError(what);
  return CtlExit::failure;
}

CtlExit run(const CtlArguments& arguments) {
  if (arguments.wantsVersion) {
    std::puts("plemoractl " PLEMORA_VERSION);
    return CtlExit::success;
  }
  if (arguments.wantsHelp) {
    const bool isAboutAll = arguments.verb == CtlVerb::help;
    std::fputs((isAboutAll ? ctlHelp() : ctlHelp(ctlCommand(arguments.verb))).c_str(), stdout);
    return CtlExit::success;
  }
  try {
    MixerClient client;
    return CtlProgram(client, outputStyle()).run(arguments);
  } catch (const ClientError& error) {
    return explainError(error);
  }
}

}  // namespace

int main(int argc, char** argv) {
  std::setlocale(LC_ALL, "");
  const std::vector<std::string> words(argv + 1, argv + argc);
  std::string problem;
  const auto arguments = parseCtlArguments(words, problem);
  if (!arguments) {
    printError(problem + "\nTry \"plemoractl --help\".");
    return static_cast<int>(CtlExit::usage);
  }
  const QCoreApplication application(argc, argv);
  const CtlExit result = run(*arguments);
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
    printError("cannot write the output: " + std::string(std::strerror(errno)));
    return static_cast<int>(CtlExit::failure);
  }
  return static_cast<int>(result);
}
