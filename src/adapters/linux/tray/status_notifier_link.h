#pragma once

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>
#include <functional>
#include <optional>

namespace plemora {

/// Registers the program's item with the tray's watcher (org.kde.StatusNotifierWatcher), again
/// after each restart of it, and tells whether a host shows such items. Main thread; never waits.
class StatusNotifierLink : public QObject {
  Q_OBJECT

 public:
  /// changed is called once the tray has first answered, or cannot, and with every change of
  /// isShown from then on; never from inside the constructor.
  StatusNotifierLink(QDBusConnection bus, std::function<void(bool isShown)> changed);
  /// Gives the item's bus name up, which takes it from the tray.
  ~StatusNotifierLink() override;

  /// Whether a watcher has taken the item and a host shows it.
  bool isShown() const { return isShown_.value_or(false); }
  /// Whether the tray has answered, or cannot.
  bool isKnown() const { return isShown_.has_value(); }

 private slots:
  void hostsChanged();

 private:
  void watcherChanged(const QString& owner);
  void registerItem();
  void setShown(bool isShown);

  QDBusConnection bus_;
  QString itemName_;
  std::function<void(bool)> changed_;
  QDBusServiceWatcher watch_;
  QString watcher_;  // unique name of the watcher; empty: none
  bool isRegistered_ = false;
  std::optional<bool> isShown_;  // none: not known yet
};

}  // namespace plemora
