#pragma once

#include "main/stage/stage_options.h"

namespace plemora {

/// Shows the stage as the options say, in a window or in files. Needs a QGuiApplication. The exit
/// status: 0, or 1 after a message on standard error.
int runStage(const StageOptions& options);

}  // namespace plemora
