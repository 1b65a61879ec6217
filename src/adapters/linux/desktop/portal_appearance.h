#pragma once

#include <QDBusConnection>
#include <QDBusVariant>
#include <QObject>
#include <QVariant>
#include <optional>
#include <string>

#include "platform/appearance.h"

namespace plemora {

/// The desktop's colour scheme by the settings portal (org.freedesktop.appearance, color-scheme):
/// dark only where the user prefers dark; "no preference" is light. Without a portal GTK_THEME
/// decides, by a name that ends in ":dark" or "-dark", and without that it is light. Motion is
/// reduced where the portal says so (reduced-motion), or, if it does not know that, where GNOME's
/// animations are off. Asks once at the start without waiting, and follows changes. Main thread.
class PortalAppearance : public QObject, public Appearance {
  Q_OBJECT

 public:
  explicit PortalAppearance(QDBusConnection bus);

  bool reducesMotion() override {
    return reducedMotion_ ? *reducedMotion_ : !hasAnimations_.value_or(true);
  }
  bool isDark() override { return isDark_.get(); }
  [[nodiscard]] Subscription observe(std::function<void(bool isDark)> observer) override;

 private slots:
  void settingChanged(const QString& group, const QString& key, const QDBusVariant& value);

 private:
  void ask(const QString& group, const QString& key);
  void accept(const QString& group, const QString& key, const QVariant& value);
  void acceptScheme(const QVariant& value);

  QDBusConnection bus_;
  Published<bool> isDark_;
  std::optional<bool> reducedMotion_;  // none: the portal does not know
  std::optional<bool> hasAnimations_;
};

/// Whether the name of a GTK theme says that it is dark.
bool isDarkThemeName(const std::string& name);

}  // namespace plemora
