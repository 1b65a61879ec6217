#pragma once

#include <functional>
#include <vector>

#include "adapters/linux/tray/bus_object.h"
#include "adapters/linux/tray/tray_types.h"
#include "platform/status_bar.h"

namespace plemora {

inline constexpr char busMenuPath[] = "/MenuBar";

/// The item's menu for hosts that draw it themselves (com.canonical.dbusmenu). Main thread.
class BusMenu : public BusObject {
 public:
  /// Asked each time that a host is about to show the menu.
  using Items = std::function<std::vector<MenuItem>()>;

  BusMenu(QDBusConnection bus, Items items);

 protected:
  QVariantMap properties() const override;

 private:
  /// Asks for the items; true when they look different from before. New looks get new ids, so that
  /// a late click on an old item does nothing rather than something else.
  bool refresh();
  void refreshOnce();
  bool aboutToShow(int id);
  void event(int id, const QString& type);
  QVariantMap propertiesOf(int id, const QStringList& names) const;
  const MenuItem* find(int id) const;
  bool isKnown(int id) const { return id == rootId || find(id) != nullptr; }

  QVariantList layout(const QVariantList& arguments);
  QVariantList groupProperties(const QVariantList& arguments);

  static constexpr int rootId = 0;

  Items provider_;
  std::vector<MenuItem> items_;
  int firstId_ = 1;
  uint revision_ = 0;  // 0: never asked
};

}  // namespace plemora
