#include "adapters/linux/tray/pop_up_menu.h"

#include <utility>

#include "adapters/linux/tray/pop_up_window.h"
#include "adapters/linux/tray/screen_points.h"

namespace plemora {

PopUpMenu::PopUpMenu(std::vector<PopUpMenuItem> items, std::function<void()> didEnd) {
  auto done = [didEnd = std::move(didEnd)](const std::function<void()>& action) {
    if (action) {
      action();
    }
    if (didEnd) {
      didEnd();
    }
  };
  window_.reset(new PopUpWindow(std::move(items), std::move(done)));
}

PopUpMenu::~PopUpMenu() = default;

void PopUpMenu::Dismiss::operator()(PopUpWindow* window) const {
  window->abandon();
  window->deleteLater();
}

void PopUpMenu::show(const Rect& anchor) {
  window_->showAt(toolkitFromPoints(anchor));
}

void PopUpMenu::setItems(std::vector<PopUpMenuItem> items) {
  window_->setItems(std::move(items));
}

}  // namespace plemora
