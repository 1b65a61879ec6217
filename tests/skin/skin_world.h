#pragma once

#include <memory>
#include <string>
#include <vector>

#include "adapters/stage/manual_serial_queue.h"
#include "adapters/stage/memory_defaults.h"
#include "adapters/stage/memory_files.h"
#include "adapters/stage/memory_resources.h"
#include "adapters/stage/scripted_appearance.h"
#include "adapters/stage/scripted_control_reload.h"
#include "adapters/stage/scripted_hosted_view.h"
#include "adapters/stage/scripted_input_events.h"
#include "adapters/stage/scripted_system_info.h"
#include "adapters/stage/simulated_hal.h"
#include "adapters/stage/stage_windows.h"
#include "adapters/stage/virtual_display_links.h"
#include "controlcenter/control_center_world.h"
#include "devices/output_devices.h"
#include "skin/control_center_skin.h"
#include "skin/look/control_center_look.h"

namespace plemora {

/// Control Center with the program's tiles, and all that the skin stands on. On the screen of
/// 1440 x 900 the two tiles are a module of 316 x 64 at (1060, 736), y up.
struct SkinWorld : ControlCenterWorld {
  static constexpr double frameTime = 1.0 / 64;  // seconds, exactly
  static constexpr Rect panel{1050, 0, 340, 600};
  static constexpr Rect leftTile{1060, 100, 150, 64};
  static constexpr Rect rightTile{1226, 100, 150, 64};
  static constexpr Rect module{1060, 736, 316, 64};

  StageWindows windows{main, screens};
  VirtualDisplayLinks links{main, 1 / frameTime};
  StageQueueFactory queues;
  ScriptedInputEvents input;
  ScriptedControlReload reload;
  MemoryDefaults defaults;
  MemoryFiles files;
  MemoryResources resources;
  ScriptedSystemInfo system;
  ScriptedAppearance appearance;
  SimulatedHal hal{main};
  OutputDevices outputs{hal, system};
  std::unique_ptr<ControlCenterLook> look;
  std::shared_ptr<ScriptedHostedView> view;  // of the last overlay
  std::vector<ElementID> tiles;
  std::unique_ptr<ControlCenterSkin> skin;

  SkinWorld() { launch(); }

  SkinServices services() {
    look = std::make_unique<ControlCenterLook>(defaults, system, appearance);
    return {main,          queues, clock,    links, screens,   windows, input,  workspace,
            accessibility, reload, defaults, files, resources, *look,   locator};
  }
  MakeModuleView makeView() {
    return [this](SkinState&) { return view = std::make_shared<ScriptedHostedView>(); };
  }
  ControlCenterSkin& start() {
    skin = std::make_unique<ControlCenterSkin>(services(), outputs, makeView());
    skin->start();
    return *skin;
  }

  void setPanel(double alpha, int level = panelLayer) {
    windowList.windows = {window(panel, level, alpha)};
  }
  void closePanel() { windowList.windows.clear(); }
  void enterEditMode() { windowList.windows = {window({0, 0, 1440, 900}, panelLayer)}; }

  ElementID addTile(const Rect& frame) {
    const auto root = accessibility.root(pid);
    const auto tile = accessibility.add(accessibility.add(root, "AXWindows"), "AXChildren",
                                        {{"AXIdentifier", "1-com.quorvane.mixer.controls-mixer"}});
    accessibility.setFrame(tile, frame);
    tiles.push_back(tile);
    return tile;
  }

  void scan() {
    queues.runAll();
    main.drain();
  }
  void tick(int times = 1) { main.advance(times * frameTime); }

  /// With the overlay up over both tiles, quite opaque.
  ControlCenterSkin& startShowing() {
    addTile(leftTile);
    addTile(rightTile);
    setPanel(1);
    start();
    scan();
    tick(30);
    return *skin;
  }

  StageWindow& overlay() { return *windows.windows().back(); }
  double alpha() { return overlay().alpha(); }

  /// Of the overlay, wherever in the tree; null: there is none of that name.
  Layer* layer(const std::string& name) { return find(overlay().stageSurface().layer, name); }
  static Layer* find(const std::shared_ptr<Layer>& tree, const std::string& name) {
    if (!tree || tree->name == name) {
      return tree.get();
    }
    for (const auto& sublayer : tree->sublayers) {
      if (Layer* found = find(sublayer, name)) {
        return found;
      }
    }
    return nullptr;
  }

  void send(InputEventType type, Point pointer) {
    input.pointer = pointer;
    input.pressedButtons =
        type == InputEventType::leftMouseDown || type == InputEventType::leftMouseDragged
            ? leftMouseButton
            : 0;
    input.sendElsewhere({type, 0, pointer});
  }
};

}  // namespace plemora
