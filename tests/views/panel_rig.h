#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "adapters/stage/scripted_appearance.h"
#include "audio/audio_world.h"
#include "menubar/panel_view.h"
#include "platform/route_picker.h"
#include "skin/look/control_center_look.h"
#include "views/panel_scene.h"
#include "views/view_rig.h"

namespace plemora {

/// Remembers where it was asked to open; closes when it is told.
struct RecordingRoutePicker : RoutePicker {
  void present(const Rect& anchor, std::function<void()> didEnd) override {
    anchors.push_back(anchor);
    closed = std::move(didEnd);
  }
  std::vector<Rect> anchors;
  std::function<void()> closed;
};

/// The real panel over a simulated desktop.
struct PanelTest : ViewTest {
  AudioWorld world;
  ScriptedAppearance appearance;
  RecordingRoutePicker routes;
  ControlCenterLook look{world.defaults, world.system, appearance};
  int setUps = 0;
  int soundSettings = 0;
  std::unique_ptr<PanelView> view;
  std::unique_ptr<PanelScene> scene;

  void TearDown() override {
    turn();
    window.reset();
    scene.reset();
    view.reset();
    ViewTest::TearDown();
  }

  void start() {
    world.start();
    view = std::make_unique<PanelView>(
        *world.mixer, PanelView::Services{world.defaults, world.clock, routes, world.main},
        [this] { ++setUps; }, [this] { ++soundSettings; });
    scene = std::make_unique<PanelScene>(*view, look);
  }

  /// Shows the panel; height 0: as high as it wants to be.
  void open(double height = 0) {
    if (!scene) {
      start();
    }
    scene->setVisible(true);
    const double fitting = scene->fittingHeight();
    show(scene->item(), QSizeF(308, height > 0 ? height : fitting));
  }

  /// Lets the queues, the scene and its short transitions run.
  void turn() override {
    world.settle();
    ViewTest::turn();
  }
  void settleTransitions() {
    world.settle();
    QTest::qWait(260);
  }

  void wheel(const std::string& name, int angle, Qt::KeyboardModifiers modifiers = {}) {
    const QPointF where = place(name);
    QWheelEvent event(where, window->mapToGlobal(where), {}, {0, angle}, {}, modifiers,
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(window.get(), &event);
    turn();
  }
  /// What the mixer has for the app.
  float volume(const std::string& app) {
    world.mixer->publish();
    turn();
    return world.row(app)->volume;
  }
  double sliderValue(const std::string& name) const {
    QQuickItem* slider = item(name, QAccessible::Slider);
    return slider ? slider->property("value").toDouble() : -1;
  }
};

}  // namespace plemora
