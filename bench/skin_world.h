#pragma once

#include "adapters/stage/manual_serial_queue.h"
#include "adapters/stage/memory_defaults.h"
#include "adapters/stage/memory_files.h"
#include "adapters/stage/memory_preferences.h"
#include "adapters/stage/memory_resources.h"
#include "adapters/stage/scripted_accessibility.h"
#include "adapters/stage/scripted_appearance.h"
#include "adapters/stage/scripted_control_reload.h"
#include "adapters/stage/scripted_input_events.h"
#include "adapters/stage/scripted_screens.h"
#include "adapters/stage/scripted_system_info.h"
#include "adapters/stage/scripted_window_list.h"
#include "adapters/stage/scripted_workspace.h"
#include "adapters/stage/stage_windows.h"
#include "adapters/stage/virtual_clock.h"
#include "adapters/stage/virtual_display_links.h"
#include "adapters/stage/virtual_main_queue.h"
#include "controlcenter/control_center_locator.h"
#include "skin/look/control_center_look.h"
#include "skin/skin_services.h"

namespace plemora {

/// What the skin stands on, at 120 frames a second.
struct SkinWorld {
  VirtualClock clock;
  VirtualMainQueue main{clock};
  ScriptedScreens screens;
  ScriptedWindowList windowList;
  ScriptedAccessibility accessibility;
  MemoryPreferences preferences;
  ScriptedWorkspace workspace;
  ControlCenterLocator locator{screens, windowList, accessibility, preferences, workspace};
  StageWindows windows{main, screens};
  VirtualDisplayLinks links{main, 120};
  StageQueueFactory queues;
  ScriptedInputEvents input;
  ScriptedControlReload reload;
  MemoryDefaults defaults;
  MemoryFiles files;
  MemoryResources resources;
  ScriptedSystemInfo system;
  ScriptedAppearance appearance;
  ControlCenterLook look{defaults, system, appearance};

  SkinServices services(Windows& shown) {
    return {main,          queues, clock,    links, screens,   shown, input,  workspace,
            accessibility, reload, defaults, files, resources, look,  locator};
  }
};

}  // namespace plemora
