#include "app/services/updater.h"

#include "base/log.h"

namespace plemora {

namespace {

constexpr Logger logger("");

}  // namespace

void Updater::start() {
  if (const auto failure = controller_.start()) {
    logger.error("Updater failed to start: " + *failure);
  }
}

}  // namespace plemora
