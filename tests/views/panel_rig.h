#pragma once

#include <gtest/gtest.h>

#include <QAccessible>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>
#include <memory>
#include <string>
#include <vector>

#include "adapters/stage/scripted_appearance.h"
#include "audio/audio_world.h"
#include "menubar/panel_view.h"
#include "platform/route_picker.h"
#include "skin/look/control_center_look.h"
#include "views/panel_scene.h"
#include "views/qt_warnings.h"

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

/// The real panel in an offscreen window, over a simulated desktop. Warnings of Qt fail the test.
struct PanelTest : testing::Test {
  AudioWorld world;
  ScriptedAppearance appearance;
  RecordingRoutePicker routes;
  ControlCenterLook look{world.defaults, world.system, appearance};
  int setUps = 0;
  int soundSettings = 0;
  std::unique_ptr<PanelView> view;
  std::unique_ptr<PanelScene> scene;
  std::unique_ptr<QQuickWindow> window;

  void SetUp() override { QtWarnings::take(); }
  void TearDown() override {
    turn();
    window.reset();
    scene.reset();
    view.reset();
    EXPECT_EQ(QtWarnings::take(), std::vector<std::string>{});
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
    window = std::make_unique<QQuickWindow>();
    window->setGeometry(0, 0, 308, static_cast<int>(height > 0 ? height : fitting));
    scene->item()->setParentItem(window->contentItem());
    scene->item()->setSize(QSizeF(308, height > 0 ? height : fitting));
    window->show();
    window->requestActivate();
    turn();
  }

  /// Lets the queues, the scene and its short transitions run.
  void turn() {
    world.settle();
    QTest::qWait(0);
    if (window) {
      window->grabWindow();
    }
  }
  void settleTransitions() {
    world.settle();
    QTest::qWait(260);
  }

  using Interface = QAccessibleInterface*;

  static void collect(Interface node, std::vector<Interface>& found) {
    for (int i = 0; i < node->childCount(); ++i) {
      if (Interface child = node->child(i)) {
        found.push_back(child);
        collect(child, found);
      }
    }
  }
  std::vector<Interface> everything() const {
    std::vector<Interface> found;
    if (Interface root = QAccessible::queryAccessibleInterface(window.get())) {
      collect(root, found);
    }
    return found;
  }
  /// The visible control of that name; null when there is none.
  Interface find(const std::string& name, QAccessible::Role role = QAccessible::NoRole) const {
    for (Interface node : everything()) {
      if (node->text(QAccessible::Name).toStdString() == name && !node->state().invisible &&
          (role == QAccessible::NoRole || node->role() == role)) {
        return node;
      }
    }
    return nullptr;
  }
  QQuickItem* item(const std::string& name, QAccessible::Role role = QAccessible::NoRole) const {
    Interface node = find(name, role);
    return node ? qobject_cast<QQuickItem*>(node->object()) : nullptr;
  }
  QPoint place(const std::string& name, double part = 0.5,
               QAccessible::Role role = QAccessible::NoRole) const {
    QQuickItem* found = item(name, role);
    EXPECT_NE(found, nullptr) << name;
    return found ? found->mapToScene({found->width() * part, found->height() / 2}).toPoint()
                 : QPoint();
  }
  void click(const std::string& name, QAccessible::Role role = QAccessible::NoRole) {
    QTest::mouseClick(window.get(), Qt::LeftButton, {}, place(name, 0.5, role));
    turn();
  }
  void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(window.get(), key, modifiers);
    turn();
  }
  /// Accessible name of what has the focus; empty when no control has it.
  std::string focused() const {
    for (Interface node : everything()) {
      if (node->state().focused && node->role() != QAccessible::Pane) {
        return node->text(QAccessible::Name).toStdString();
      }
    }
    return {};
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
