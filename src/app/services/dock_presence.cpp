#include "app/services/dock_presence.h"

#include <algorithm>

namespace plemora {

namespace {

constexpr double lookDelay = 0.4;  // seconds

}  // namespace

void DockPresence::update() {
  looks_.push_back(queue_.after(lookDelay, [this] {
    look();
    looks_.pop_front();
  }));
}

void DockPresence::look() {
  const auto windows = application_.windows();
  const bool isNeeded = std::ranges::any_of(windows, [](const ApplicationWindow& window) {
    return window.isVisible && window.identifier == windowID;
  });
  if (!isNeeded && application_.activationPolicy() != ActivationPolicy::accessory) {
    application_.setActivationPolicy(ActivationPolicy::accessory);
  }
}

}  // namespace plemora
