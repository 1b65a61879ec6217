#include "adapters/linux/tray/status_notifier_link.h"

#include <unistd.h>

#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <utility>

#include "base/log.h"

namespace plemora {

namespace {

constexpr Logger logger("tray");

constexpr char watcherName[] = "org.kde.StatusNotifierWatcher";
constexpr char watcherPath[] = "/StatusNotifierWatcher";
constexpr char busName[] = "org.freedesktop.DBus";

}  // namespace

StatusNotifierLink::StatusNotifierLink(QDBusConnection bus, std::function<void(bool)> changed)
    : bus_(std::move(bus)),
      itemName_(QString("org.kde.StatusNotifierItem-%1-1").arg(getpid())),
      changed_(std::move(changed)) {
  if (!bus_.isConnected()) {
    QMetaObject::invokeMethod(
        this, [this] { setShown(false); }, Qt::QueuedConnection);
    return;
  }
  if (!bus_.registerService(itemName_)) {
    itemName_ = bus_.baseService();
  }
  watch_.setConnection(bus_);
  watch_.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
  watch_.addWatchedService(watcherName);
  QObject::connect(
      &watch_, &QDBusServiceWatcher::serviceOwnerChanged, this,
      [this](const QString&, const QString&, const QString& owner) { watcherChanged(owner); });
  for (const char* signal : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"}) {
    bus_.connect(watcherName, watcherPath, watcherName, signal, this, SLOT(hostsChanged()));
  }

  auto question =
      QDBusMessage::createMethodCall(busName, "/org/freedesktop/DBus", busName, "GetNameOwner");
  question << watcherName;
  auto* call = new QDBusPendingCallWatcher(bus_.asyncCall(question), this);
  QObject::connect(call, &QDBusPendingCallWatcher::finished, this, [this, call] {
    call->deleteLater();
    const QDBusPendingReply<QString> reply = *call;
    if (reply.isValid()) {
      watcherChanged(reply.value());
    } else if (watcher_.isEmpty()) {
      setShown(false);
    }
  });
}

StatusNotifierLink::~StatusNotifierLink() {
  if (bus_.isConnected() && itemName_ != bus_.baseService()) {
    bus_.unregisterService(itemName_);
  }
}

void StatusNotifierLink::watcherChanged(const QString& owner) {
  if (owner == watcher_) {
    return;
  }
  watcher_ = owner;
  isRegistered_ = false;
  if (owner.isEmpty()) {
    setShown(false);
  } else {
    registerItem();
  }
}

void StatusNotifierLink::registerItem() {
  auto message = QDBusMessage::createMethodCall(watcherName, watcherPath, watcherName,
                                                "RegisterStatusNotifierItem");
  message << itemName_;
  auto* call = new QDBusPendingCallWatcher(bus_.asyncCall(message), this);
  QObject::connect(call, &QDBusPendingCallWatcher::finished, this, [this, call, asked = watcher_] {
    call->deleteLater();
    if (asked != watcher_) {
      return;  // of a watcher that has gone since
    }
    isRegistered_ = !call->isError();
    if (call->isError()) {
      logger.warning("the tray refuses the icon: " + call->error().message().toStdString());
      setShown(false);
      return;
    }
    hostsChanged();
  });
}

void StatusNotifierLink::hostsChanged() {
  if (!isRegistered_) {
    return;
  }
  auto message = QDBusMessage::createMethodCall(watcherName, watcherPath,
                                                "org.freedesktop.DBus.Properties", "Get");
  message << watcherName << "IsStatusNotifierHostRegistered";
  auto* call = new QDBusPendingCallWatcher(bus_.asyncCall(message), this);
  QObject::connect(call, &QDBusPendingCallWatcher::finished, this, [this, call, asked = watcher_] {
    call->deleteLater();
    if (asked == watcher_) {
      const QDBusPendingReply<QDBusVariant> reply = *call;
      // A watcher that does not say is taken for a host.
      setShown(!reply.isValid() || reply.value().variant().toBool());
    }
  });
}

void StatusNotifierLink::setShown(bool isShown) {
  if (isShown != isShown_) {
    isShown_ = isShown;
    changed_(isShown);
  }
}

}  // namespace plemora
