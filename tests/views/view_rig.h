#pragma once

#include <gtest/gtest.h>

#include <QAccessible>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>
#include <memory>
#include <string>
#include <vector>

#include "views/qt_warnings.h"

namespace plemora {

/// A view in an offscreen window, operated as a user does and as assistive technology does.
/// Warnings of Qt fail the test.
struct ViewTest : testing::Test {
  std::unique_ptr<QQuickWindow> window;

  void SetUp() override { QtWarnings::take(); }
  void TearDown() override { EXPECT_EQ(QtWarnings::take(), std::vector<std::string>{}); }

  /// Lets all that waits run, and draws.
  virtual void turn() {
    QTest::qWait(0);
    if (window) {
      window->grabWindow();
    }
  }

  void show(QQuickItem* item, QSizeF size) {
    window = std::make_unique<QQuickWindow>();
    window->setGeometry(0, 0, static_cast<int>(size.width()), static_cast<int>(size.height()));
    item->setParentItem(window->contentItem());
    item->setSize(size);
    window->show();
    window->requestActivate();
    turn();
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
  std::string description(const std::string& name,
                          QAccessible::Role role = QAccessible::NoRole) const {
    Interface node = find(name, role);
    return node ? node->text(QAccessible::Description).toStdString() : "missing";
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
};

}  // namespace plemora
