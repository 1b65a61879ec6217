#include "controlcenter/open_mixer_intent.h"

#include <algorithm>
#include <string>

#include "base/log.h"
#include "controlcenter/tile_signal.h"
#include "platform/darwin_notifications.h"
#include "platform/workspace.h"

namespace plemora {

namespace {

constexpr Logger logger("control");

}  // namespace

void OpenMixerIntent::perform(Workspace& workspace, DarwinNotifications& notifications) {
  const auto applications = workspace.runningApplications();
  const bool isRunning = std::ranges::any_of(
      applications, [](const auto& application) { return application.bundleID == bundleID; });
  logger.info(std::string("tile pressed (app running: ") + (isRunning ? "true" : "false") + ")");
  if (isRunning) {
    notifications.post(TileSignal::name);
  } else {
    workspace.openURL(url);
  }
}

}  // namespace plemora
