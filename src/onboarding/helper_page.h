#pragma once

#include "onboarding/helper_state.h"
#include "onboarding/helper_view.h"

namespace plemora {

/// All that the docked helper says and offers in that state.
HelperPage helperPage(const HelperState& state);

/// Whether the step is done by dragging the program's icon into a list of System Settings.
bool takesDraggedIcon(HelperState::Kind kind);

}  // namespace plemora
