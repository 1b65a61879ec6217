#pragma once

#include <QDBusConnection>
#include <memory>
#include <optional>

#include "platform/appearance.h"
#include "platform/status_bar.h"

namespace plemora {

class LinuxStatusItem;

/// The tray of a Linux desktop: a StatusNotifierItem on the session bus wherever a host shows
/// those, else an icon in the system tray of X11. It changes over as hosts come and go. The item's
/// frame is exact in an X11 tray; of the bus it is an estimate around the last click. Main thread;
/// needs a QGuiApplication.
class LinuxStatusBar : public StatusBar {
 public:
  /// The bus may be unconnected. The appearance must outlive the items: trays that hide their
  /// colour are taken to have the desktop's.
  LinuxStatusBar(QDBusConnection bus, Appearance& appearance);

  /// At most one item at a time; the bus has one place for it.
  [[nodiscard]] std::unique_ptr<StatusItem> makeItem(const StatusItemOptions& options,
                                                     StatusItemHandlers handlers) override;

  /// Whether a tray shows the item; none while that is not known yet, or there is no item.
  std::optional<bool> showsItem() const;

 private:
  QDBusConnection bus_;
  Appearance& appearance_;
  std::shared_ptr<const LinuxStatusItem*> item_;  ///< the one that there is; null: none
};

}  // namespace plemora
