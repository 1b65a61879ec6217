#include "adapters/linux/desktop/portal_appearance.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <cstdlib>
#include <utility>

#include "base/text.h"

namespace plemora {

namespace {

constexpr char portal[] = "org.freedesktop.portal.Desktop";
constexpr char path[] = "/org/freedesktop/portal/desktop";
constexpr char settings[] = "org.freedesktop.portal.Settings";
constexpr char group[] = "org.freedesktop.appearance";
constexpr char key[] = "color-scheme";
constexpr unsigned preferDark = 1;  // 0: no preference, 2: prefer light

bool isDarkByEnvironment() {
  const char* theme = std::getenv("GTK_THEME");
  return theme && isDarkThemeName(theme);
}

}  // namespace

bool isDarkThemeName(const std::string& name) {
  const std::string lower = lowercased(name);
  return lower.ends_with(":dark") || lower.ends_with("-dark");
}

PortalAppearance::PortalAppearance(QDBusConnection bus)
    : bus_(std::move(bus)), isDark_(isDarkByEnvironment()) {
  if (bus_.isConnected()) {
    // The bus finds the types of a slot by their names, which nobody may have used before.
    qRegisterMetaType<QDBusVariant>("QDBusVariant");
    bus_.connect(portal, path, settings, "SettingChanged", this,
                 SLOT(settingChanged(QString, QString, QDBusVariant)));
    ask();
  }
}

Subscription PortalAppearance::observe(std::function<void(bool isDark)> observer) {
  return isDark_.subscribe(std::move(observer));
}

void PortalAppearance::ask() {
  auto message = QDBusMessage::createMethodCall(portal, path, settings, "Read");
  message << group << key;
  auto* call = new QDBusPendingCallWatcher(bus_.asyncCall(message), this);
  QObject::connect(call, &QDBusPendingCallWatcher::finished, this, [this, call] {
    call->deleteLater();
    const QDBusPendingReply<QDBusVariant> reply = *call;
    if (reply.isValid()) {
      accept(reply.value().variant());
    }
  });
}

void PortalAppearance::settingChanged(const QString& changedGroup, const QString& changedKey,
                                      const QDBusVariant& value) {
  if (changedGroup == group && changedKey == key) {
    accept(value.variant());
  }
}

void PortalAppearance::accept(const QVariant& value) {
  // Some portals wrap the value once more.
  const QVariant inner =
      value.canConvert<QDBusVariant>() ? value.value<QDBusVariant>().variant() : value;
  bool isNumber = false;
  const unsigned scheme = inner.toUInt(&isNumber);
  if (const bool isDark = scheme == preferDark; isNumber && isDark != isDark_.get()) {
    isDark_.set(isDark);
  }
}

}  // namespace plemora
