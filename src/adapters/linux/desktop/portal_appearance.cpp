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
constexpr char schemeKey[] = "color-scheme";
constexpr unsigned preferDark = 1;  // 0: no preference, 2: prefer light
constexpr char motionKey[] = "reduced-motion";
constexpr unsigned reduceMotion = 1;  // 0: no preference
constexpr char gnomeGroup[] = "org.gnome.desktop.interface";
constexpr char animationsKey[] = "enable-animations";

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
    ask(group, schemeKey);
    ask(group, motionKey);
    ask(gnomeGroup, animationsKey);
  }
}

Subscription PortalAppearance::observe(std::function<void(bool isDark)> observer) {
  return isDark_.subscribe(std::move(observer));
}

void PortalAppearance::ask(const QString& askedGroup, const QString& askedKey) {
  auto message = QDBusMessage::createMethodCall(portal, path, settings, "Read");
  message << askedGroup << askedKey;
  auto* call = new QDBusPendingCallWatcher(bus_.asyncCall(message), this);
  QObject::connect(call, &QDBusPendingCallWatcher::finished, this,
                   [this, call, askedGroup, askedKey] {
                     call->deleteLater();
                     const QDBusPendingReply<QDBusVariant> reply = *call;
                     if (reply.isValid()) {
                       accept(askedGroup, askedKey, reply.value().variant());
                     }
                   });
}

void PortalAppearance::settingChanged(const QString& changedGroup, const QString& changedKey,
                                      const QDBusVariant& value) {
  accept(changedGroup, changedKey, value.variant());
}

void PortalAppearance::accept(const QString& saidGroup, const QString& saidKey,
                              const QVariant& value) {
  // Some portals wrap the value once more.
  const QVariant inner =
      value.canConvert<QDBusVariant>() ? value.value<QDBusVariant>().variant() : value;
  if (saidGroup == group && saidKey == schemeKey) {
    acceptScheme(inner);
  } else if (saidGroup == group && saidKey == motionKey && inner.canConvert<unsigned>()) {
    reducedMotion_ = inner.toUInt() == reduceMotion;
  } else if (saidGroup == gnomeGroup && saidKey == animationsKey && inner.canConvert<bool>()) {
    hasAnimations_ = inner.toBool();
  }
}

void PortalAppearance::acceptScheme(const QVariant& value) {
  bool isNumber = false;
  const unsigned scheme = value.toUInt(&isNumber);
  if (const bool isDark = scheme == preferDark; isNumber && isDark != isDark_.get()) {
    isDark_.set(isDark);
  }
}

}  // namespace plemora
