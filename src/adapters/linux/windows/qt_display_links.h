#pragma once

#include <functional>
#include <memory>

#include "adapters/linux/windows/linux_screens.h"
#include "platform/display_link.h"

namespace plemora {

/// Display links as precise timers at the refresh rate of their screen: the software renderer has
/// no vertical blank to wait for. A link that is late skips frames rather than hurry after them.
class QtDisplayLinks : public DisplayLinks {
 public:
  explicit QtDisplayLinks(LinuxScreens& screens) : screens_(screens) {}

  [[nodiscard]] std::unique_ptr<DisplayLink> makeLink(int screen,
                                                      std::function<void()> tick) override;

 private:
  LinuxScreens& screens_;
};

}  // namespace plemora
