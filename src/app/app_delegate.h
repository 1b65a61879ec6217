#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "controlcenter/control_center_primer.h"
#include "controlcenter/delayed_work.h"
#include "controlcenter/tile_signal.h"
#include "menubar/menu_bar_services.h"
#include "menubar/status_item_controller.h"
#include "onboarding/onboarding_services.h"
#include "skin/control_center_detail.h"
#include "skin/control_center_skin.h"

namespace plemora {

class Accessibility;
class ConsentService;
class ControlCenterLayout;
class ControlCenterLocator;
class ControlReload;
class DarwinNotifications;
class FileDrag;
class Files;
class LaunchAtLogin;
class OnboardingController;
class Preferences;
class Resources;
class SerialQueueFactory;
class SystemInfo;
class WindowList;

/// The world as the whole program needs it. All of it outlives the AppDelegate.
struct AppServices {
  MenuBarServices menuBar;
  ControlCenterLayout& layout;
  Preferences& preferences;  ///< those that the layout is kept in
  const ControlCenterLocator& locator;
  Accessibility& accessibility;
  ConsentService& consent;
  WindowList& windowList;
  FileDrag& fileDrag;
  DarwinNotifications& notifications;
  ControlReload& controlReload;
  SystemInfo& system;
  LaunchAtLogin& launchAtLogin;
  SerialQueueFactory& queues;
  Files& files;
  Resources& resources;
  std::int32_t ownPid;                 ///< process identifier of the program
  std::vector<std::string> arguments;  ///< of the command line, without the program's name

  /// The mixer: a new one, or the one that the process has already. Called once.
  std::function<std::shared_ptr<MixerModel>()> makeModel;
  /// See StatusItemController. Called for the panel of the status item, and for that of the module.
  StatusItemController::MakeContent makeContent;
  /// See ControlCenterSkin. Called for the overlay over the module, and for the panel that grows
  /// out of it.
  MakeModuleView makeModuleView;
  /// What draws setup.
  OnboardingContents onboardingContents;
  /// Writes a line to the standard output; the line end is not part of the text.
  std::function<void(const std::string&)> print;
  /// Ends the process with that status, without applicationWillTerminate. May return, in a world
  /// that ends the process in its own time; the delegate then goes no further.
  std::function<void(int)> exit;
};

/// The program's own logic from its start to its end: makes the long-lived objects in a fixed order
/// and wires them, keeps the program's control in its place in Control Center across updates,
/// shows setup to who has not been through it, understands launch arguments and URLs, and puts the
/// system's Sound module back when the program quits. Main thread; what it has put off is dropped
/// when it goes.
class AppDelegate {
 public:
  explicit AppDelegate(AppServices services);
  ~AppDelegate();
  AppDelegate(const AppDelegate&) = delete;
  AppDelegate& operator=(const AppDelegate&) = delete;

  /// Called once, first of all.
  void applicationDidFinishLaunching();
  /// URLs of the program's scheme that the desktop hands over; ignored before start-up.
  void applicationOpen(const std::vector<std::string>& urls);
  /// The user has started the running program again. False: nothing else is to be done about it.
  bool applicationShouldHandleReopen(bool hasVisibleWindows);
  /// Called last, when the program ends in the orderly way.
  void applicationWillTerminate();

  /// Null until start-up has made them.
  MixerModel* model() { return model_.get(); }
  StatusItemController* statusItem() { return statusItem_.get(); }
  OnboardingController* onboarding() { return onboarding_.get(); }
  ControlCenterSkin* skin() { return skin_.get(); }
  ControlCenterDetail* detail() { return detail_.get(); }

 private:
  void startApp();
  void makeStatusItem();
  void makeOnboarding();
  void makeSkin();
  void makeDetail();
  void wireSkinAndDetail();
  bool isReplacementWhole() const;
  bool replaceSound(std::initializer_list<const char*> forgotten);
  bool repairReplacement();
  bool refreshTilesAfterUpdate();
  void primeAfterSystemUpdate();
  void prepareControls(std::function<void()> done);
  bool arePrimed() const;
  bool runScript();
  void handleArguments();

  void prime(ControlCenterPrimer::Absence absence, std::function<void()> then = {});
  void tilePressed();
  void openLater(double delay, StatusItemController::Anchor from);
  void reloadControlsLater();
  bool isSet(const std::string& key) const;
  bool hasArgument(const std::string& argument) const;
  std::string tileStamp() const;

  const AppServices services_;
  ControlCenterPrimer primer_;
  TileSignal tileSignal_;
  std::shared_ptr<MixerModel> model_;
  std::unique_ptr<StatusItemController> statusItem_;
  std::unique_ptr<OnboardingController> onboarding_;
  std::unique_ptr<ControlCenterSkin> skin_;
  std::unique_ptr<ControlCenterDetail> detail_;
  bool hasRestartedControlCenter_ = false;  // a moment ago, in this start-up
  DelayedWork later_;                       // the first to go
};

}  // namespace plemora
