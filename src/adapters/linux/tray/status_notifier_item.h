#pragma once

#include <QPoint>
#include <functional>
#include <optional>

#include "adapters/linux/tray/bus_object.h"
#include "adapters/linux/tray/scroll_steps.h"
#include "adapters/linux/tray/tray_types.h"

namespace plemora {

inline constexpr char notifierItemPath[] = "/StatusNotifierItem";

/// The program's item as hosts of a tray see it (org.kde.StatusNotifierItem). Main thread.
class StatusNotifierItem : public BusObject {
 public:
  /// Places are the pointer's as the host gives it, y down; often in pixels of the whole desktop,
  /// sometimes nothing but zeros. Called after the host has been answered.
  struct Handlers {
    std::function<void(QPoint)> activated;           ///< the left button
    std::function<void(QPoint)> secondaryActivated;  ///< the middle button
    std::function<void(QPoint)> menuWanted;          ///< where the host draws no menus
    std::function<void(int steps)> scrolled;
  };

  StatusNotifierItem(QDBusConnection bus, Handlers handlers);

  /// The icon is drawn once a host asks for it.
  void setIcon(std::function<QList<TrayPixmap>()> draw);
  void setToolTip(const QString& text);

 protected:
  QVariantMap properties() const override;

 private:
  void offerPlace(const QString& name, std::function<void(QPoint)> handler);
  void later(std::function<void()> work);

  Handlers handlers_;
  std::function<QList<TrayPixmap>()> draw_;
  mutable std::optional<QList<TrayPixmap>> icon_;  // as drawn for the last host that asked
  QString text_;
  ScrollSteps steps_;
};

}  // namespace plemora
