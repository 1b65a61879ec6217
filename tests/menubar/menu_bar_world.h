#pragma once

#include <memory>

#include "adapters/stage/scripted_appearance.h"
#include "adapters/stage/scripted_application.h"
#include "adapters/stage/scripted_hosted_view.h"
#include "adapters/stage/scripted_input_events.h"
#include "adapters/stage/scripted_route_picker.h"
#include "adapters/stage/scripted_screens.h"
#include "adapters/stage/scripted_status_bar.h"
#include "adapters/stage/scripted_update_service.h"
#include "adapters/stage/stage_windows.h"
#include "adapters/stage/virtual_display_links.h"
#include "app/services/updater.h"
#include "audio/audio_world.h"
#include "menubar/status_item_controller.h"
#include "skin/look/control_center_look.h"

namespace plemora {

/// A simulated desktop with a menu bar, in which the mixer's item sits once it is started.
struct MenuBarWorld : AudioWorld {
  ScriptedAppearance appearance;
  ScriptedApplication application;
  ScriptedScreens screens;
  ScriptedInputEvents input;
  ScriptedStatusBar bar;
  ScriptedRoutePicker picker;
  ScriptedUpdateService updates;
  StageWindows windows{main, screens};
  VirtualDisplayLinks links{main};
  ControlCenterLook look{defaults, system, appearance};
  Updater updater{updates};
  ControlCenterHooks hooks;
  std::shared_ptr<ScriptedHostedView> content = std::make_shared<ScriptedHostedView>();
  int contentsMade = 0;
  std::unique_ptr<StatusItemController> controller;

  ~MenuBarWorld() { controller.reset(); }

  StatusItemController& startItem() {
    controller.reset();
    start();
    const MenuBarServices services{main,    clock, defaults, workspace, application, screens, input,
                                   windows, links, bar,      picker,    look,        updater};
    const auto makeContent = [this](PanelView&) {
      ++contentsMade;
      return content;
    };
    controller = std::make_unique<StatusItemController>(*mixer, services, makeContent, hooks);
    return *controller;
  }

  /// With the panel open and at rest.
  StatusItemController& startOpen() {
    startItem().open(StatusItemController::Anchor::menuBar);
    pass(0.2);
    return *controller;
  }

  /// Monitors of events that are installed.
  int monitors() const { return input.globalMonitors() + input.localMonitors(); }

  /// The panel's; there is one from the first opening on.
  StageWindow& window() { return *windows.windows().at(0); }
};

}  // namespace plemora
