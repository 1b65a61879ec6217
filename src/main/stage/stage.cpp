#include <QDir>
#include <QGuiApplication>
#include <QQuickWindow>
#include <QTemporaryDir>
#include <clocale>
#include <cstdio>
#include <string>
#include <vector>

#include "base/log.h"
#include "main/process/display_probe.h"
#include "main/stage/stage_run.h"

namespace {

using namespace plemora;

/// A new folder that stays.
std::string temporaryFolder() {
  QTemporaryDir folder(QDir::temp().filePath("plemora-stage-XXXXXX"));
  folder.setAutoRemove(false);
  return folder.path().toStdString();
}

}  // namespace

int main(int argc, char** argv) {
  std::setlocale(LC_ALL, "");
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  std::string problem;
  auto options = parseStageOptions(arguments, problem);
  if (!options) {
    std::fprintf(stderr, "plemora-stage: %s\nTry \"plemora-stage --help\".\n", problem.c_str());
    return 2;
  }
  if (options->wantsHelp) {
    std::fputs(stageHelp().c_str(), stdout);
    return 0;
  }
  bool isInWindow = !options->isOffscreen && !options->tour && !options->skin;
  if (isInWindow && !displayAnswers()) {
    if (options->scenario) {
      std::fputs(
          "plemora-stage: no display answers; add --offscreen to play the scenario without "
          "a window\n",
          stderr);
      return 1;
    }
    std::puts("No display answers, so the stage is shown in pictures.");
    options->tour = temporaryFolder();
    isInWindow = false;
  }
  if (!isInWindow) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
  }
  QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
  // The arguments are ours alone; the toolkit has its variables.
  int one = 1;
  QGuiApplication application(one, argv);
  QGuiApplication::setApplicationDisplayName("Plemora on stage");
  setLogHandler({});  // what happens on a simulated desktop is nobody's news
  return runStage(*options);
}
