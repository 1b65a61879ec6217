#pragma once

#include <memory>
#include <string>
#include <vector>

#include "adapters/stage/scripted_hosted_view.h"
#include "adapters/stage/simulated_hal.h"
#include "devices/output_devices.h"
#include "skin/control_center_skin.h"
#include "skin/skin_ground.h"

namespace plemora {

/// Control Center with the program's tiles on the ground of the skin. On the screen of 1440 x 900
/// the two tiles are a module of 316 x 64 at (1060, 736), y up.
struct SkinWorld : SkinGround {
  static constexpr double frameTime = 1.0 / 64;  // seconds, exactly
  static constexpr Rect panel{1050, 0, 340, 600};
  static constexpr Rect leftTile{1060, 100, 150, 64};
  static constexpr Rect rightTile{1226, 100, 150, 64};
  static constexpr Rect module{1060, 736, 316, 64};

  SimulatedHal hal{main};
  OutputDevices outputs{hal, system};
  std::shared_ptr<ScriptedHostedView> view;  // of the last overlay
  std::vector<ElementID> tiles;
  std::unique_ptr<ControlCenterSkin> skin;

  SkinWorld() : SkinGround(1 / frameTime) { launch(); }

  MakeModuleView makeView() {
    return [this](SkinState&) { return view = std::make_shared<ScriptedHostedView>(); };
  }
  ControlCenterSkin& start() {
    skin = std::make_unique<ControlCenterSkin>(services(windows), outputs, makeView());
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
