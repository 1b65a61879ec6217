#include "app/app_delegate.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <exception>
#include <map>
#include <utility>

#include "app/services/launch_at_login.h"
#include "app/services/main_menu.h"
#include "app/services/updater.h"
#include "controlcenter/control_center_layout.h"
#include "controlcenter/control_center_locator.h"
#include "controlcenter/layout_record.h"
#include "controlcenter/panel_url.h"
#include "onboarding/onboarding_controller.h"
#include "platform/accessibility.h"
#include "platform/clock.h"
#include "platform/control_reload.h"
#include "platform/system_info.h"
#include "platform/user_defaults.h"

namespace plemora {

namespace {

using Anchor = StatusItemController::Anchor;

// Keys of the settings.
constexpr const char* soundReplacedKey = OnboardingController::soundReplacedKey;
constexpr const char* didCompleteSetupKey = OnboardingController::didCompleteSetupKey;
constexpr const char* tilesRefreshedKey = "tilesRefreshedForBuild";
constexpr const char* controlsPrimedKey = "controlsPrimedForSystem";

// Seconds.
constexpr double requestDelay = 0.12;  // Control Center, or who opened a URL, is to be done first
constexpr double argumentDelay = 0.3;
constexpr double reloadDelay = 2.0;  // for Control Center to be back
constexpr double primeDelay = 4.0;
constexpr double samePressTime = 1.0;  // between the skin's own word of a press and the tile's

constexpr std::size_t wholeTiles = 2;  // of the program, in place of Sound

}  // namespace

AppDelegate::AppDelegate(AppServices services)
    : services_(std::move(services)),
      primer_(services_.locator, services_.accessibility, services_.menuBar.workspace,
              services_.menuBar.mainQueue, services_.menuBar.clock),
      tileSignal_(services_.notifications, services_.menuBar.mainQueue),
      later_(services_.menuBar.mainQueue) {}

AppDelegate::~AppDelegate() = default;

void AppDelegate::applicationDidFinishLaunching() {
  MainMenu::install(services_.menuBar.application);
  startApp();
}

void AppDelegate::startApp() {
  model_ = services_.makeModel();
  makeStatusItem();
  makeOnboarding();
  makeSkin();
  makeDetail();
  wireSkinAndDetail();
  skin_->start();
  services_.menuBar.updater.start();
  services_.launchAtLogin.enableOnFirstRun();
  const bool isRepaired = isSet(soundReplacedKey) && !isReplacementWhole() && repairReplacement();
  if (!isRepaired && !refreshTilesAfterUpdate()) {
    services_.controlReload.reloadAllControls();
  }
  primeAfterSystemUpdate();
  tileSignal_.observe([this] { tilePressed(); });
  handleArguments();
}

void AppDelegate::makeStatusItem() {
  ControlCenterHooks hooks;
  hooks.iconFrame = [this] { return services_.locator.iconFrame(); };
  hooks.canPutSoundBack = [this] { return isReplacementWhole(); };
  hooks.putSoundBack = [this] { services_.layout.putSoundBack(true); };
  statusItem_ = std::make_unique<StatusItemController>(*model_, services_.menuBar,
                                                       services_.makeContent, std::move(hooks));
}

void AppDelegate::makeOnboarding() {
  onboarding_ = std::make_unique<OnboardingController>(
      *model_, *statusItem_,
      OnboardingServices{services_.menuBar, services_.layout, services_.locator,
                         services_.preferences, services_.accessibility, services_.consent,
                         services_.windowList, services_.system, services_.fileDrag,
                         services_.onboardingContents, services_.ownPid});
  onboarding_->replaceSound = [this] {
    return replaceSound({tilesRefreshedKey, controlsPrimedKey});
  };
  onboarding_->onTilesAddedByHand = [this] {
    services_.menuBar.defaults.setString(tilesRefreshedKey, tileStamp());
    services_.menuBar.defaults.setString(controlsPrimedKey,
                                         services_.system.operatingSystemVersionString());
  };
  onboarding_->onComplete = [this] { primeAfterSystemUpdate(); };
  onboarding_->prepareControls = [this](std::function<void()> done) {
    prepareControls(std::move(done));
  };
  statusItem_->onSetUp = [this] {
    statusItem_->close();
    onboarding_->show();
  };
}

void AppDelegate::makeSkin() {
  const MenuBarServices& desktop = services_.menuBar;
  const SkinServices skin{desktop.mainQueue,       services_.queues,  desktop.clock,
                          desktop.displayLinks,    desktop.screens,   desktop.windows,
                          desktop.inputEvents,     desktop.workspace, services_.accessibility,
                          services_.controlReload, desktop.defaults,  services_.files,
                          services_.resources,     desktop.look,      services_.locator};
  skin_ = std::make_unique<ControlCenterSkin>(skin, model_->outputs(), services_.makeModuleView);
}

void AppDelegate::makeDetail() {
  detail_ = std::make_unique<ControlCenterDetail>(
      *model_, skin_->state,
      DetailServices{services_.menuBar, services_.locator, services_.makeContent,
                     services_.makeModuleView, [this] { return skin_->lastHandledPress(); }});
}

/// One of the two is to be seen in the module's place.
void AppDelegate::wireSkinAndDetail() {
  skin_->onOpenDetail = [this](const Rect& module) { detail_->present(module); };
  skin_->onPrepareDetail = [this](const Rect& module) {
    detail_->tearDown();
    detail_->build(module);
    detail_->prepared = true;
  };
  detail_->onSetUp = [this] { statusItem_->setUpFromMenu(); };
  detail_->willPresent = [this] {
    skin_->isSuppressed = true;
    skin_->hide();
  };
  detail_->onCollapseFinished = [this] {
    skin_->isSuppressed = false;
    skin_->showInstantly = true;
    skin_->startTracking();
    skin_->tick();
  };
  detail_->onClosed = [this] { skin_->isSuppressed = false; };
}

/// Whether the layout reads, and has the program's tiles and no Sound.
bool AppDelegate::isReplacementWhole() const {
  try {
    const auto layout = ControlCenterLayout::Layout::read(services_.preferences);
    return layout.soundElement() == nullptr && layout.mixerElements().size() >= wholeTiles;
  } catch (const std::exception&) {
    return false;
  }
}

/// Control Center may be on its way back, with tiles that it has never shown.
void AppDelegate::prepareControls(std::function<void()> done) {
  if (arePrimed()) {
    done();
    return;
  }
  services_.menuBar.defaults.setString(tilesRefreshedKey, tileStamp());
  later_.after(reloadDelay, [this, done = std::move(done)] {
    services_.controlReload.reloadAllControls();
    prime(ControlCenterPrimer::Absence::restarts, done);
  });
}

/// Without those settings the next start restarts Control Center and has it show the tiles, if this
/// one ends before it could. After a failure they are as they were.
bool AppDelegate::replaceSound(std::initializer_list<const char*> forgotten) {
  UserDefaults& defaults = services_.menuBar.defaults;
  std::map<const char*, std::string> kept;
  for (const char* key : forgotten) {
    if (const auto value = defaults.string(key)) {
      kept[key] = *value;
      defaults.remove(key);
    }
  }
  try {
    services_.layout.replaceSound();
    return true;
  } catch (const std::exception&) {
    for (const auto& [key, value] : kept) {
      defaults.setString(key, value);
    }
    return false;
  }
}

/// A failure is nobody's to mend; the next start tries again.
bool AppDelegate::repairReplacement() {
  if (!replaceSound({tilesRefreshedKey})) {
    return false;
  }
  hasRestartedControlCenter_ = true;
  services_.menuBar.defaults.setString(tilesRefreshedKey, tileStamp());
  reloadControlsLater();
  return true;
}

/// Whether Control Center was restarted.
bool AppDelegate::refreshTilesAfterUpdate() {
  const std::string stamp = tileStamp();
  if (services_.menuBar.defaults.string(tilesRefreshedKey) == stamp) {
    return false;
  }
  // First of all, so that what fails below is not tried again at every start.
  services_.menuBar.defaults.setString(tilesRefreshedKey, stamp);
  if (!services_.locator.isMixerControlAdded()) {
    return false;
  }
  services_.layout.restartControlCenter();
  hasRestartedControlCenter_ = true;
  reloadControlsLater();
  return true;
}

/// Whether this system's Control Center has shown the program's tiles.
bool AppDelegate::arePrimed() const {
  return services_.menuBar.defaults.string(controlsPrimedKey) ==
         services_.system.operatingSystemVersionString();
}

void AppDelegate::primeAfterSystemUpdate() {
  if (!isSet(didCompleteSetupKey) || !isSet(soundReplacedKey) || arePrimed() ||
      !services_.accessibility.isTrusted()) {
    return;
  }
  later_.after(primeDelay, [this] { prime(ControlCenterPrimer::Absence::final); });
}

void AppDelegate::prime(ControlCenterPrimer::Absence absence, std::function<void()> then) {
  primer_.prime(
      [this, then = std::move(then)](bool succeeded) {
        if (succeeded) {
          services_.menuBar.defaults.setString(controlsPrimedKey,
                                               services_.system.operatingSystemVersionString());
        }
        if (then) {
          then();
        }
      },
      absence);
}

void AppDelegate::handleArguments() {
  if (runScript()) {
    return;
  }
  if (hasArgument("--prime-controls")) {
    prime(hasRestartedControlCenter_ ? ControlCenterPrimer::Absence::restarts
                                     : ControlCenterPrimer::Absence::final,
          [this] { services_.print("primed"); });
  }
  if (hasArgument("--test-helper")) {
    onboarding_->testHelper();
    return;
  }
  if (hasArgument("--setup") || !isSet(didCompleteSetupKey)) {
    onboarding_->show();
    return;
  }
  if (hasArgument("--open")) {
    openLater(argumentDelay, Anchor::menuBar);
  }
}

/// Whether the process is to do nothing but change the layout. Scripts read the word that is
/// printed: the exit status is 0 also after a failure.
bool AppDelegate::runScript() {
  const bool replaces = hasArgument("--replace-sound");
  if (!replaces && !hasArgument("--restore-sound")) {
    return false;
  }
  try {
    if (replaces) {
      services_.layout.replaceSound();
    } else {
      services_.layout.restore();
    }
    // What the next start keeps in place, and the next end undoes.
    services_.menuBar.defaults.setBoolean(soundReplacedKey, replaces);
    services_.print("ok");
  } catch (const std::exception& error) {
    services_.print(std::string("failed: ") + error.what());
  }
  services_.exit(0);
  return true;
}

void AppDelegate::applicationOpen(const std::vector<std::string>& urls) {
  const auto request = statusItem_ ? PanelRequest::of(urls) : std::nullopt;
  if (request) {
    openLater(requestDelay, request->isFromControlCenter ? Anchor::controlCenter : Anchor::menuBar);
  }
}

bool AppDelegate::applicationShouldHandleReopen(bool /*hasVisibleWindows*/) {
  if (onboarding_) {
    onboarding_->show();
  }
  return false;
}

// The setting stays as it is: the next start puts the program's control back.
void AppDelegate::applicationWillTerminate() {
  if (!skin_) {
    return;
  }
  skin_->stop();
  detail_->tearDown();
  onboarding_->tearDown();
  if (!isSet(soundReplacedKey)) {
    return;
  }
  try {
    services_.layout.putSoundBack(true);
  } catch (const std::exception&) {
    // The layout is as it was, and the program has to go.
  }
}

/// The tile below the module says so too when the module is pressed.
void AppDelegate::tilePressed() {
  const double now = services_.menuBar.clock.mediaTime();
  if (!skin_->isShowing() && !(now - skin_->lastHandledPress() < samePressTime)) {
    openLater(requestDelay, Anchor::controlCenter);
  }
}

void AppDelegate::openLater(double delay, Anchor from) {
  later_.after(delay, [this, from] {
    detail_->dismiss();  // one mixer at a time
    statusItem_->open(from);
  });
}

void AppDelegate::reloadControlsLater() {
  later_.after(reloadDelay, [this] { services_.controlReload.reloadAllControls(); });
}

bool AppDelegate::isSet(const std::string& key) const {
  return services_.menuBar.defaults.boolean(key).value_or(false);
}

bool AppDelegate::hasArgument(const std::string& argument) const {
  return std::ranges::find(services_.arguments, argument) != services_.arguments.end();
}

/// Changes with every build of the program, also with one that keeps its version number.
std::string AppDelegate::tileStamp() const {
  std::string stamp = services_.system.bundleVersion().value_or("0");
  const auto date = services_.system.executableModificationDate();
  // Beyond that it is no date, and fits no integer.
  if (date && std::abs(*date) < 0x1p63) {
    stamp += "-" + std::to_string(static_cast<std::int64_t>(*date));
  }
  return stamp;
}

}  // namespace plemora
