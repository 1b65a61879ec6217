#include "adapters/linux/tray/linux_status_bar.h"

#include <utility>

#include "adapters/linux/tray/linux_status_item.h"

namespace plemora {

namespace {

/// Is missed by the bar once it is gone.
class KnownItem : public LinuxStatusItem {
 public:
  KnownItem(std::shared_ptr<const LinuxStatusItem*> place, QDBusConnection bus,
            Appearance& appearance, const StatusItemOptions& options, StatusItemHandlers handlers)
      : LinuxStatusItem(std::move(bus), appearance, options, std::move(handlers)),
        place_(std::move(place)) {
    *place_ = this;
  }
  ~KnownItem() override { *place_ = nullptr; }

 private:
  const std::shared_ptr<const LinuxStatusItem*> place_;
};

}  // namespace

LinuxStatusBar::LinuxStatusBar(QDBusConnection bus, Appearance& appearance)
    : bus_(std::move(bus)),
      appearance_(appearance),
      item_(std::make_shared<const LinuxStatusItem*>(nullptr)) {}

std::unique_ptr<StatusItem> LinuxStatusBar::makeItem(const StatusItemOptions& options,
                                                     StatusItemHandlers handlers) {
  item_ = std::make_shared<const LinuxStatusItem*>(nullptr);
  return std::make_unique<KnownItem>(item_, bus_, appearance_, options, std::move(handlers));
}

std::optional<bool> LinuxStatusBar::showsItem() const {
  return *item_ != nullptr ? (*item_)->isShown() : std::nullopt;
}

}  // namespace plemora
