#pragma once

#include "glass/glass_look.h"
#include "main/stage/drawing.h"
#include "platform/system_info.h"

namespace plemora {

/// How the simulated system's glass looks. These are the stage's own choices: the program under
/// test tunes its glass to match the system's, so it must not be asked what that is.
GlassLook stageGlassLook(GlassKind kind, bool isDark, GlassRelease release);

GlassRelease glassReleaseOf(const SystemVersion& version);

/// What the window server makes of the colours behind a window before that window's own effects
/// get them: a little darker than they are seen.
ColorMatrix stageBackdropResponse(bool isDark, GlassRelease release);

/// Alphas of the white rim of such glass: at its very top, and from an eighth of its height down.
/// On a screen with two pixels to the point they are those of an outer and an inner hairline.
struct GlassRim {
  double top = 0;
  double rest = 0;
};
GlassRim stageGlassRim(GlassKind kind);

}  // namespace plemora
