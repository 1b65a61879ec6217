#pragma once

#include <memory>

#include "adapters/stage/manual_serial_queue.h"
#include "adapters/stage/memory_defaults.h"
#include "adapters/stage/memory_files.h"
#include "adapters/stage/memory_resources.h"
#include "adapters/stage/scripted_appearance.h"
#include "adapters/stage/scripted_control_reload.h"
#include "adapters/stage/scripted_input_events.h"
#include "adapters/stage/scripted_system_info.h"
#include "adapters/stage/stage_windows.h"
#include "adapters/stage/virtual_display_links.h"
#include "controlcenter/control_center_world.h"
#include "skin/look/control_center_look.h"
#include "skin/skin_services.h"

namespace plemora {

/// What the skin stands on.
struct SkinGround : ControlCenterWorld {
  explicit SkinGround(double framesPerSecond) : links(main, framesPerSecond) {}

  StageWindows windows{main, screens};
  VirtualDisplayLinks links;
  StageQueueFactory queues;
  ScriptedInputEvents input;
  ScriptedControlReload reload;
  MemoryDefaults defaults;
  MemoryFiles files;
  MemoryResources resources;
  ScriptedSystemInfo system;
  ScriptedAppearance appearance;
  std::unique_ptr<ControlCenterLook> look;  ///< of the last services

  SkinServices services(Windows& shown) {
    look = std::make_unique<ControlCenterLook>(defaults, system, appearance);
    return {main,          queues, clock,    links, screens,   shown, input,  workspace,
            accessibility, reload, defaults, files, resources, *look, locator};
  }
};

}  // namespace plemora
