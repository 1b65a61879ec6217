#pragma once

#include "glass/glass_look.h"
#include "main/stage/drawing.h"

namespace plemora {

/// How the simulated system's glass looks. These are the stage's own choices: the program under
/// test tunes its glass to match the system's, so it must not be asked what that is.
GlassLook stageGlassLook(GlassKind kind, bool isDark);

/// Colours of the rim of such glass: at its top and at its bottom.
struct GlassRim {
  Color top;
  Color bottom;
};
GlassRim stageGlassRim(GlassKind kind, bool isDark);

}  // namespace plemora
