#include "adapters/linux/desktop/desktop_notifier.h"

#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QStringList>
#include <QVariantMap>

#include "base/log.h"

namespace plemora {

namespace {

constexpr Logger logger("notifications");

constexpr char service[] = "org.freedesktop.Notifications";
constexpr char path[] = "/org/freedesktop/Notifications";
constexpr int serversOwnTime = -1;

/// Servers may take the text for markup.
QString plain(const std::string& text) {
  return QString::fromStdString(text).replace("&", "&amp;").replace("<", "&lt;");
}

}  // namespace

void DesktopNotifier::show(const std::string& title, const std::string& text) {
  logger.notice(title + ": " + text);
  if (!bus_.isConnected()) {
    return;
  }
  auto message = QDBusMessage::createMethodCall(service, path, service, "Notify");
  message << "Plemora" << *last_ << "com.quorvane.mixer" << QString::fromStdString(title)
          << plain(text) << QStringList() << QVariantMap{{"desktop-entry", "com.quorvane.mixer"}}
          << serversOwnTime;
  auto* call = new QDBusPendingCallWatcher(bus_.asyncCall(message));
  QObject::connect(call, &QDBusPendingCallWatcher::finished, [call, last = last_] {
    call->deleteLater();
    const QDBusPendingReply<unsigned> reply = *call;
    if (reply.isValid()) {
      *last = reply.value();
    } else {
      logger.info("no notification service shows it: " + reply.error().message().toStdString());
    }
  });
}

}  // namespace plemora
