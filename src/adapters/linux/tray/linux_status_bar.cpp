#include "adapters/linux/tray/linux_status_bar.h"

#include <utility>

#include "adapters/linux/tray/linux_status_item.h"

namespace plemora {

LinuxStatusBar::LinuxStatusBar(QDBusConnection bus, Appearance& appearance)
    : bus_(std::move(bus)), appearance_(appearance) {}

std::unique_ptr<StatusItem> LinuxStatusBar::makeItem(const StatusItemOptions& options,
                                                     StatusItemHandlers handlers) {
  return std::make_unique<LinuxStatusItem>(bus_, appearance_, options, std::move(handlers));
}

}  // namespace plemora
