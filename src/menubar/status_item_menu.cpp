#include <exception>
#include <utility>

#include "app/services/updater.h"
#include "menubar/status_item_controller.h"
#include "platform/application.h"
#include "platform/user_defaults.h"

// The menu of the status item.

namespace plemora {

void StatusItemController::showMenu() {
  close();
  statusItem_->popUpMenu(menuItems());
}

std::vector<MenuItem> StatusItemController::menuItems() {
  std::vector<MenuItem> items;
  items.push_back({"Set Up Plemora…", [this] { setUpFromMenu(); }, ""});
  if (controlCenter_.canPutSoundBack && controlCenter_.canPutSoundBack()) {
    items.push_back(
        {"Put Apple's Sound Back in Control Center", [this] { restoreAppleSound(); }, ""});
  }
  items.push_back({});
  items.push_back({"Check for Updates…", [this] { checkForUpdates(); }, ""});
  items.push_back({"Quit Plemora", [this] { services_.application.terminate(); }, "q"});
  return items;
}

std::vector<MenuItem> StatusItemController::menuItemsOfHost() {
  std::vector<MenuItem> items = menuItems();
  items.insert(items.begin(), {"Open Plemora", [this] { open(Anchor::menuBar); }, ""});
  return items;
}

void StatusItemController::setUpFromMenu() {
  if (onSetUp) {
    onSetUp();
  }
}

void StatusItemController::restoreAppleSound() {
  services_.defaults.setBoolean("soundReplaced", false);
  if (!controlCenter_.putSoundBack) {
    return;
  }
  try {
    controlCenter_.putSoundBack();
  } catch (const std::exception&) {
    // The layout is as it was; the menu offers it again.
  }
}

void StatusItemController::checkForUpdates() {
  services_.updater.controller().checkForUpdates();
}

}  // namespace plemora
