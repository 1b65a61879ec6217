#include <malloc.h>

#include <clocale>
#include <csignal>
#include <cstdio>
#include <string>
#include <vector>

#include "adapters/linux/desktop/console_log.h"
#include "base/log.h"
#include "main/desktop_ui.h"
#include "main/instance.h"
#include "main/process/display_probe.h"
#include "main/program_options.h"
#include "main/script_mode.h"

namespace {

using namespace plemora;

constexpr Logger logger("program");

/// Large buffers go back to the system as soon as they are freed, whatever was freed before, and
/// threads share one heap: none of those that must not wait for another allocates.
void keepHeapSmall() {
  mallopt(M_MMAP_THRESHOLD, 128 * 1024);
  mallopt(M_ARENA_MAX, 1);
}

}  // namespace

int main(int argc, char** argv) {
  keepHeapSmall();
  std::setlocale(LC_ALL, "");
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  std::string problem;
  const auto options = parseProgramOptions(arguments, problem);
  if (!options && asksForScript(arguments)) {
    std::puts(("failed: " + problem).c_str());
    return success;
  }
  if (!options) {
    printError(problem + "\nTry \"plemora --help\".");
    return usage;
  }
  if (options->wantsHelp) {
    std::fputs(programHelp().c_str(), stdout);
    return success;
  }
  if (options->wantsVersion) {
    std::puts("plemora " PLEMORA_VERSION);
    return success;
  }
  if (options->script.action) {
    std::puts(runScript(options->script).c_str());
    return success;  // scripts read the word
  }
  // The log may go to a pipe whose reader ends first.
  std::signal(SIGPIPE, SIG_IGN);
  setLogHandler(makeConsoleLog());
  if (options->screenshots) {
    DesktopUi* ui = loadDesktopUi(problem);
    if (ui == nullptr) {
      logger.error("the panel cannot be loaded: " + problem);
      return failure;
    }
    setLogHandler({});  // what the simulated engine does is nobody's news
    return ui->renderScreenshots(*options->screenshots);
  }
  const bool hasDesktop = !options->withoutWindow && displayAnswers();
  if (!hasDesktop && !options->withoutWindow) {
    logger.notice("no display answers: the engine runs without a window; plemoractl controls it");
  }
  return Instance(argc, argv, arguments).run(hasDesktop, *options);
}
