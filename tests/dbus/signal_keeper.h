#pragma once

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <vector>

#include "adapters/linux/dbus/bus_types.h"
#include "adapters/linux/dbus/mixer_names.h"

namespace plemora {

/// Keeps the signals of the mixer that reach one connection.
class SignalKeeper : public QObject {
  Q_OBJECT

 public:
  explicit SignalKeeper(QDBusConnection bus) {
    bus.connect({}, mixerObjectPath, "org.freedesktop.DBus.Properties", "PropertiesChanged", this,
                SLOT(onChange(QDBusMessage)));
    bus.connect({}, mixerObjectPath, mixerInterface, "Levels", this, SLOT(onLevels(QDBusMessage)));
    // The bus confirms requests in order: after this answer it knows what to deliver here.
    bus.call(QDBusMessage::createMethodCall("org.freedesktop.DBus", "/", "org.freedesktop.DBus",
                                            "GetId"));
  }

  std::vector<QVariantMap> changes;
  std::vector<std::vector<LevelReport>> levels;

 private Q_SLOTS:
  void onChange(const QDBusMessage& message) {
    changes.push_back(qdbus_cast<QVariantMap>(message.arguments().value(1)));
  }
  void onLevels(const QDBusMessage& message) {
    levels.push_back(levelsFromBus(message.arguments().value(0)));
  }
};

}  // namespace plemora
