#include "app/services/launch_at_login.h"

#include <algorithm>
#include <utility>

#include "base/log.h"

namespace plemora {

namespace {

constexpr Logger logger("");

}  // namespace

LaunchAtLogin::LaunchAtLogin(UserDefaults& defaults, SystemInfo& system, LoginItem& item,
                             std::vector<std::string> installedUnder)
    : defaults_(defaults),
      system_(system),
      item_(item),
      installedUnder_(std::move(installedUnder)) {}

void LaunchAtLogin::enableOnFirstRun() {
  if (defaults_.boolean(key).value_or(false)) {
    return;
  }
  const std::string path = system_.bundlePath();
  if (std::ranges::none_of(installedUnder_,
                           [&](const auto& prefix) { return path.starts_with(prefix); })) {
    return;
  }
  if (const auto failure = item_.enable()) {
    logger.error("Plemora: login item registration failed: " + *failure);
    return;
  }
  defaults_.setBoolean(key, true);
}

}  // namespace plemora
