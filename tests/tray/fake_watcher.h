#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QStringList>

namespace plemora {

/// The desktop's list of tray items (org.kde.StatusNotifierWatcher), on the bus as long as it
/// lives, with a host that draws them if wanted.
class FakeWatcher : public QDBusVirtualObject {
 public:
  explicit FakeWatcher(QDBusConnection bus, bool hasHost = true)
      : bus_(std::move(bus)), hasHost_(hasHost) {
    bus_.registerVirtualObject(path, this);
    bus_.registerService(name);
  }
  ~FakeWatcher() override {
    bus_.unregisterService(name);
    bus_.unregisterObject(path);
  }

  void setHost(bool hasHost) {
    hasHost_ = hasHost;
    bus_.send(QDBusMessage::createSignal(
        path, name, hasHost ? "StatusNotifierHostRegistered" : "StatusNotifierHostUnregistered"));
  }

  QStringList items;  ///< as registered
  bool refusesItems = false;
  bool knowsItsHosts = true;  ///< else the property is missing

  QString introspect(const QString&) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
    const QString member = message.member();
    if (member == "RegisterStatusNotifierItem" && !refusesItems) {
      items << message.arguments().at(0).toString();
      return connection.send(message.createReply());
    }
    if (member == "Get" && knowsItsHosts &&
        message.arguments().at(1) == "IsStatusNotifierHostRegistered") {
      return connection.send(message.createReply(QVariant::fromValue(QDBusVariant(hasHost_))));
    }
    return connection.send(message.createErrorReply(QDBusError::Failed, "refused by the test"));
  }

 private:
  static constexpr char name[] = "org.kde.StatusNotifierWatcher";
  static constexpr char path[] = "/StatusNotifierWatcher";

  QDBusConnection bus_;
  bool hasHost_;
};

}  // namespace plemora
