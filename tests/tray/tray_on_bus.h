#pragma once

#include <gtest/gtest.h>

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <memory>
#include <string>
#include <vector>

#include "adapters/linux/tray/linux_status_bar.h"
#include "adapters/linux/tray/tray_types.h"
#include "adapters/stage/scripted_appearance.h"
#include "dbus/private_bus.h"
#include "platform/input_events.h"
#include "tray/fake_watcher.h"

namespace plemora {

/// A status item on a private bus, and a host of trays on the other side of it.
class TrayOnBus : public testing::Test {
 protected:
  void makeItem() {
    StatusItemOptions options;
    options.actionMask = leftMouseDownMask | rightMouseDownMask;
    options.accessibilityLabel = "Sound";
    StatusItemHandlers handlers;
    handlers.clicked = [this](StatusButtonEvent event) { clicks.push_back(event); };
    handlers.scrolled = [this](int steps) { scrolled.push_back(steps); };
    handlers.menu = [this] {
      ++menusAsked;
      return menu;
    };
    item = bar.makeItem(options, std::move(handlers));
  }

  /// Calls the item as a host does; the answer, be it an error.
  QDBusMessage ask(const QString& path, const QString& interface, const QString& method,
                   const QVariantList& arguments = {}) {
    auto message = QDBusMessage::createMethodCall(itemBus.baseService(), path, interface, method);
    message.setArguments(arguments);
    const QDBusPendingCall call = hostBus.asyncCall(message);
    EXPECT_TRUE(runUntil([&] { return call.isFinished(); }, [] {})) << method.toStdString();
    return call.reply();
  }
  QDBusMessage askItem(const QString& method, const QVariantList& arguments = {}) {
    return ask("/StatusNotifierItem", "org.kde.StatusNotifierItem", method, arguments);
  }
  QVariant property(const QString& name) {
    const auto reply = ask("/StatusNotifierItem", "org.freedesktop.DBus.Properties", "Get",
                           {"org.kde.StatusNotifierItem", name});
    return reply.arguments().value(0).value<QDBusVariant>().variant();
  }
  QList<TrayPixmap> pixmaps() { return qdbus_cast<QList<TrayPixmap>>(property("IconPixmap")); }

  bool settle(const std::function<bool()>& condition) {
    return runUntil(condition, [] {});
  }
  bool registered(const FakeWatcher& watcher, int count) {
    return settle([&] { return watcher.items.size() == count; });
  }

  std::vector<StatusButtonEvent> clicks;
  std::vector<int> scrolled;
  std::vector<MenuItem> menu;
  int menusAsked = 0;

  PrivateBus bus;
  QDBusConnection hostBus = bus.connection("host");
  QDBusConnection itemBus = bus.connection("item");
  ScriptedAppearance appearance{true};
  LinuxStatusBar bar{itemBus, appearance};
  std::unique_ptr<StatusItem> item;
};

}  // namespace plemora
