#include "main/stage/stage_run.h"

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QTimer>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include "adapters/files/preferences_host.h"
#include "main/process/ending_signals.h"
#include "main/stage/picture_resources.h"
#include "main/stage/program_on_stage.h"
#include "main/stage/scenario.h"
#include "main/stage/scenario_runner.h"
#include "main/stage/skin_pages.h"
#include "main/stage/stage_bubbles.h"
#include "main/stage/stage_loop.h"
#include "main/stage/stage_screen_window.h"
#include "main/stage/stage_show.h"
#include "main/stage/stage_sound.h"
#include "main/stage/stage_world.h"
#include "skin/bubble_cancel.h"

namespace plemora {

namespace {

constexpr const char* curtainScript = ":/plemora/scripts/curtain.json";
constexpr const char* tourScript = ":/plemora/scripts/tour.json";

Scenario builtInScenario(const char* path) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) {
    throw ScenarioError(std::string(path) + " is missing from the program");
  }
  return parseScenario(file.readAll().toStdString(), path);
}

/// What is to be played, with what the command line says about the stage.
Scenario scenarioFor(const StageOptions& options) {
  Scenario scenario = options.scenario ? loadScenario(*options.scenario)
                                       : builtInScenario(options.tour ? tourScript : curtainScript);
  if (options.isDark) {
    scenario.stage.isDark = options.isDark;
  }
  if (options.scale) {
    if (!scenario.stage.screens) {
      scenario.stage.screens = {ScenarioScreen{}};
    }
    for (ScenarioScreen& screen : *scenario.stage.screens) {
      screen.scale = *options.scale;
    }
  }
  return scenario;
}

StageStorage storageFor(const StageOptions& options) {
  return options.preferences ? StageStorage::inFolder(*options.preferences,
                                                      preferencesHost(options.preferencesHost))
                             : StageStorage::inMemory();
}

/// The stage with the program on it, as long as it is shown.
class Performance {
 public:
  Performance(const StageOptions& options, StageShow::Time time)
      : folder_(QString::fromStdString(options.tour.value_or(options.screenshots.value_or("")))),
        scenario_(scenarioFor(options)),
        world_(scenario_, storageFor(options)),
        show_(world_.desktop, time),
        sound_(options.audio == StageOptions::Audio::pipewire ? std::make_unique<StageSound>()
                                                              : nullptr),
        program_(world_, face()) {
    if (options.wallpaper) {
      show_.setWallpaper(*options.wallpaper);
      hasFixedWallpaper_ = true;
    }
    copyBubbleSets();
    runner_ = std::make_unique<ScenarioRunner>(
        scenario_, world_, program_,
        ScenarioHooks{
            .settle = [this] { show_.settle(); },
            .advance = [this](double seconds) { show_.advance(seconds); },
            .controls = [this] { return show_.controls(); },
            .screenshot = [this](const std::string& name) { takePictures(name); },
            .setWallpaper = [this](const std::string& name) { return setWallpaper(name); },
            .began = {}});
  }

  StageDesktop& desktop() { return world_.desktop; }
  StageShow& show() { return show_; }
  ScenarioRunner& runner() { return *runner_; }

 private:
  ProgramFace face() {
    ProgramFace face{show_.windows(), [this](PanelView& view, const ControlCenterLook& look) {
                       return show_.makeContent(view, look);
                     }};
    face.makeModuleView = [this](SkinState& state, const ControlCenterLook& look) {
      return show_.makeModuleView(state, look);
    };
    face.makeOnboardingContents = [this](const ControlCenterLook&) {
      return show_.onboardingContents();
    };
    StageBubbles::install(resources_, world_.files);
    face.resources = &resources_;
    if (sound_) {
      face.makeModel = [this](const MixerServices& stage) { return sound_->makeModel(stage); };
    }
    return face;
  }

  /// The folder is one of this machine, which the stage does not see.
  void copyBubbleSets() {
    const auto& arguments = scenario_.stage.arguments;
    const auto key = std::ranges::find(arguments, std::string("-") + BubbleCancel::folderKey);
    if (arguments.end() - key > 1) {
      PictureResources::copyFolder(*std::next(key), world_.files);
    }
  }

  bool setWallpaper(const std::string& name) {
    const auto wallpaper = stageWallpaperNamed(name);
    if (wallpaper && !hasFixedWallpaper_) {
      show_.setWallpaper(*wallpaper);
    }
    return wallpaper.has_value();
  }

  /// Of every screen; those beside the main one have their number in the name.
  void takePictures(const std::string& name) {
    if (folder_.isEmpty()) {
      return;
    }
    if (!QDir(folder_).mkpath(".")) {
      throw std::runtime_error("cannot make the folder " + folder_.toStdString() +
                               "; choose another one");
    }
    int number = 0;
    for (const Screen& screen : world_.desktop.screens.screens().get()) {
      ++number;
      const std::string file =
          name + (number > 1 ? "-screen" + std::to_string(number) : std::string()) + ".png";
      const QString path = QDir(folder_).filePath(QString::fromStdString(file));
      if (!show_.picture(screen.id).save(path, "PNG")) {
        throw std::runtime_error("cannot write " + path.toStdString() +
                                 "; choose a folder that can be written to");
      }
    }
  }

  QString folder_;
  Scenario scenario_;
  StageWorld world_;
  StageShow show_;
  PictureResources resources_;
  std::unique_ptr<StageSound> sound_;
  ProgramOnStage program_;
  std::unique_ptr<ScenarioRunner> runner_;
  bool hasFixedWallpaper_ = false;
};

int fail(const std::string& problem) {
  std::fprintf(stderr, "plemora-stage: %s\n", problem.c_str());
  return 1;
}

int runOffscreen(const StageOptions& options) {
  Performance performance(options, StageShow::Time::virtualTime);
  if (!performance.runner().run()) {
    return fail(performance.runner().problem());
  }
  if (options.tour) {
    std::printf("The pictures of the tour are in %s\n", options.tour->c_str());
  }
  return 0;
}

/// Plays the scenario in real time.
class LivePlay {
 public:
  LivePlay(Performance& performance, double speed) : performance_(performance), speed_(speed) {
    timer_.setSingleShot(true);
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { proceed(); });
    timer_.start(0);
  }

 private:
  void proceed() {
    ScenarioRunner& runner = performance_.runner();
    if (const auto pause = runner.proceed()) {
      timer_.start(static_cast<int>(std::ceil(*pause * 1000 / speed_)));
    } else if (!runner.problem().empty()) {
      fail(runner.problem());
      QGuiApplication::exit(1);
    }
  }

  Performance& performance_;
  double speed_;
  QTimer timer_;
};

int runInWindow(const StageOptions& options) {
  Performance performance(
      options, options.speed == 1 ? StageShow::Time::realTime : StageShow::Time::virtualTime);
  performance.show().setShowsPointer(false);
  std::unique_ptr<StageLoop> loop;
  StageScreenWindow window(performance.desktop(), performance.show(), [&] {
    if (loop) {
      loop->catchUp();
    }
  });
  loop = std::make_unique<StageLoop>(performance.desktop(), performance.show(), options.speed,
                                     [&] { window.refresh(); });
  LivePlay play(performance, options.speed);
  const EndingSignals ending([] { QGuiApplication::quit(); });
  window.show();
  return QGuiApplication::exec();
}

}  // namespace

int runStage(const StageOptions& options) {
  try {
    if (options.skin) {
      writeSkinPages(*options.skin);
      std::printf("The layers of the module are in %s\n", options.skin->c_str());
      return 0;
    }
    return options.isOffscreen || options.tour ? runOffscreen(options) : runInWindow(options);
  } catch (const std::exception& error) {
    return fail(error.what());
  }
}

}  // namespace plemora
