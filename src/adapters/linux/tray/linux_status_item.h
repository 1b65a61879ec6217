#pragma once

#include <QDBusConnection>
#include <QTimer>
#include <memory>
#include <optional>
#include <vector>

#include "adapters/linux/tray/bus_menu.h"
#include "adapters/linux/tray/pop_up_menu.h"
#include "adapters/linux/tray/status_notifier_item.h"
#include "adapters/linux/tray/status_notifier_link.h"
#include "adapters/linux/tray/tray_icon.h"
#include "adapters/linux/tray/tray_place.h"
#include "adapters/linux/tray/x11_link.h"
#include "adapters/linux/tray/xembed_icon.h"
#include "platform/appearance.h"
#include "platform/status_bar.h"

namespace plemora {

/// The item on the bus and, while no host of the bus shows it, in an X11 tray. Main thread.
class LinuxStatusItem : public StatusItem {
 public:
  LinuxStatusItem(QDBusConnection bus, Appearance& appearance, StatusItemOptions options,
                  StatusItemHandlers handlers);

  void setImage(const SymbolImage& image) override;
  void setHighlighted(bool isHighlighted) override;
  std::optional<Rect> frame() override;
  void popUpMenu(std::vector<MenuItem> items) override;

  /// Whether a tray shows the item; none while that is not known yet.
  std::optional<bool> isShown() const;

 private:
  StatusNotifierItem::Handlers notifierHandlers();
  std::vector<MenuItem> hostMenu();
  void clicked(StatusButtonEvent event);
  void scrolled(int steps);
  void hostChanged(bool isShown);
  void useX11Tray();
  TrayShade shade();
  void followShade();
  void draw();

  Appearance& appearance_;
  StatusItemOptions options_;
  StatusItemHandlers handlers_;
  SymbolImage image_;
  bool isHighlighted_ = false;
  TrayShade shade_ = TrayShade::dark;  // that the icon is drawn for

  std::unique_ptr<X11Link> x11_;  // null: not on an X server
  TrayPlace place_;
  BusMenu menu_;
  StatusNotifierItem notifier_;
  std::unique_ptr<XembedIcon> xembed_;  // only while no host of the bus shows the item
  std::unique_ptr<PopUpMenu> popUp_;
  QTimer patience_;    // for a host that is only being restarted
  QTimer afterPaint_;  // a panel has no colour before it is painted
  Subscription appearanceChange_;
  StatusNotifierLink link_;  // last: what it reports needs all of the above
};

}  // namespace plemora
