#include "main/stage/program_on_stage.h"

#include <utility>

#include "adapters/stage/memory_resources.h"
#include "adapters/stage/scripted_hosted_view.h"
#include "app/services/launch_at_login.h"
#include "app/services/updater.h"
#include "controlcenter/control_center_layout.h"
#include "controlcenter/control_center_locator.h"
#include "controlcenter/open_mixer_intent.h"
#include "main/stage/launch_defaults.h"

namespace plemora {

namespace {

// Of the control extension's bundle, as the system knows it.
StageControlExtension controlExtension(StageWorld& world) {
  return {.extensionID = "com.quorvane.mixer.controls",
          .containerID = ProgramOnStage::bundleID,
          .kind = "com.quorvane.mixer.sound",
          .displayName = ProgramOnStage::name,
          .description = "Master volume, each app's volume and the output device.",
          .perform =
              [&world] { OpenMixerIntent::perform(world.desktop.workspace, world.notifications); },
          // While the program draws a module over its tiles, they stay empty below it.
          .isBlank =
              [&world] {
                return world.desktop.program.isRunning() && world.desktop.accessibility.isTrusted();
              }};
}

/// For a face that draws no setup.
OnboardingContents undrawnOnboarding() {
  const auto view = [](auto&...) { return std::make_shared<ScriptedHostedView>(); };
  return {view, view, view, view};
}

}  // namespace

/// What lives as long as the process.
struct ProgramOnStage::Run {
  Run(StageWorld& world, const std::vector<std::string>& arguments)
      : defaults(arguments, world.defaults),
        stored(world.makePreferences()),
        look(defaults, world.desktop.systemInfo, world.desktop.appearance),
        updater(world.desktop.updates),
        launchAtLogin(defaults, world.desktop.systemInfo, world.desktop.loginItem),
        locator(world.desktop.screens, world.desktop.windowServer, world.desktop.accessibility,
                preferences, world.desktop.workspace),
        layout(preferences, world.files, world.desktop.clock, world.desktop.workspace) {
    preferences.gate = [&world](const std::string& call) {
      return world.faults.passesPreferences(call);
    };
  }

  LaunchDefaults defaults;
  std::unique_ptr<Preferences> stored;
  FaultyPreferences preferences{*stored};
  MemoryResources resources;
  ControlCenterLook look;
  Updater updater;
  LaunchAtLogin launchAtLogin;
  ControlCenterLocator locator;
  ControlCenterLayout layout;
  std::unique_ptr<AppDelegate> delegate;
};

ProgramOnStage::ProgramOnStage(StageWorld& world, ProgramFace face)
    : world_(world), face_(std::move(face)) {
  StageDesktop& desktop = world_.desktop;
  desktop.extensions.installed.push_back(controlExtension(world_));
  desktop.workspace.handleScheme(bundleID, [this](const std::string& url) {
    openURL(url);
    return true;
  });
  desktop.program.onTerminate = [this] { later([this] { quitNow(); }); };
  desktop.program.onKilled = [this] { run_.reset(); };
  desktop.program.onReopen = [this] { start(); };
}

ProgramOnStage::~ProgramOnStage() {
  kill();
  StageDesktop& desktop = world_.desktop;
  desktop.program.onTerminate = nullptr;
  desktop.program.onKilled = nullptr;
  desktop.program.onReopen = nullptr;
  desktop.workspace.handleScheme(bundleID, nullptr);
  std::erase_if(desktop.extensions.installed,
                [](const auto& extension) { return extension.containerID == bundleID; });
}

AppDelegate* ProgramOnStage::delegate() {
  return run_ ? run_->delegate.get() : nullptr;
}

AppServices ProgramOnStage::services(Run& run, const std::vector<std::string>& arguments) {
  StageDesktop& desktop = world_.desktop;
  const MenuBarServices menuBar{
      desktop.mainQueue,   desktop.clock, run.defaults,  desktop.workspace,    desktop.program,
      desktop.screens,     desktop.input, face_.windows, desktop.displayLinks, desktop.menuBar,
      desktop.routePicker, run.look,      run.updater};
  const auto makeModel = [this, &run, &desktop, arguments] {
    const MixerServices mixer{desktop.hal,    desktop.hal,          desktop.mainQueue,
                              desktop.queues, desktop.clock,        desktop.workspace,
                              run.defaults,   desktop.consent,      desktop.systemInfo,
                              arguments,      desktop.program.pid()};
    return face_.makeModel ? face_.makeModel(mixer) : std::make_shared<MixerModel>(mixer);
  };
  return {
      menuBar,
      run.layout,
      run.preferences,
      run.locator,
      desktop.accessibility,
      desktop.consent,
      desktop.windowServer,
      desktop.fileDrag,
      world_.notifications,
      world_.controlReload,
      desktop.systemInfo,
      run.launchAtLogin,
      desktop.queues,
      world_.files,
      face_.resources != nullptr ? *face_.resources : run.resources,
      desktop.program.pid(),
      arguments,
      makeModel,
      [this, &run](PanelView& view) { return face_.makeContent(view, run.look); },
      [this, &run](SkinState& state) {
        return face_.makeModuleView ? face_.makeModuleView(state, run.look)
                                    : std::make_shared<ScriptedHostedView>();
      },
      face_.makeOnboardingContents ? face_.makeOnboardingContents(run.look) : undrawnOnboarding(),
      [this](const std::string& line) { printed_.push_back(line); },
      [this](int status) { later([this, status] { end(status); }); }};
}

void ProgramOnStage::start(const std::vector<std::string>& arguments) {
  if (run_) {
    run_->delegate->applicationShouldHandleReopen(false);
    return;
  }
  printed_.clear();
  exitStatus_.reset();
  world_.desktop.program.start(bundleID, name);
  run_ = std::make_unique<Run>(world_, arguments);
  run_->delegate = std::make_unique<AppDelegate>(services(*run_, arguments));
  guard([this] { run_->delegate->applicationDidFinishLaunching(); });
}

void ProgramOnStage::quit() {
  world_.desktop.program.terminate();
}

void ProgramOnStage::quitNow() {
  guard([this] {
    run_->delegate->applicationWillTerminate();
    end(0);
  });
}

void ProgramOnStage::kill() {
  if (run_) {
    world_.desktop.workspace.forceTerminate(world_.desktop.program.pid());
  }
}

void ProgramOnStage::openURL(const std::string& url) {
  start();
  later([this, url] { guard([&] { run_->delegate->applicationOpen({url}); }); });
}

void ProgramOnStage::guard(const std::function<void()>& act) {
  try {
    act();
  } catch (const ProgramKilled&) {
    kill();
  }
}

void ProgramOnStage::end(int status) {
  exitStatus_ = status;
  run_.reset();
  world_.desktop.program.end();
}

/// Not from within the program's own code, and only if it still is the same run then.
void ProgramOnStage::later(std::function<void()> work) {
  const std::int32_t pid = world_.desktop.program.pid();
  world_.desktop.mainQueue.async(
      [this, pid, work = std::move(work), life = std::weak_ptr<int>(life_)] {
        if (!life.expired() && run_ && world_.desktop.program.pid() == pid) {
          work();
        }
      });
}

}  // namespace plemora
