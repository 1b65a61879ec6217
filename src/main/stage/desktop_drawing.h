#pragma once

#include "adapters/stage/desktop/stage_desktop.h"
#include "main/stage/drawing.h"

namespace plemora {

/// A window of the desktop, or of an app that is not the program, as marks in points of the window
/// server's space (y down). Empty for the program's windows, whose content is their own.
Drawing drawingOf(const StageWindowRecord& window, StageDesktop& desktop);

// The parts of it, each in a file of its own.
Drawing menuBarDrawing(const StageWindowRecord& window, StageDesktop& desktop);
Drawing statusItemDrawing(const StageStatusItem& item, StageDesktop& desktop);
Drawing menuDrawing(const StageMenu& menu, StageDesktop& desktop);
Drawing dockDrawing(StageDesktop& desktop);
Drawing playerDrawing(const StagePlayer& player, StageDesktop& desktop);
Drawing promptDrawing(StageDesktop& desktop);
Drawing settingsDrawing(StageDesktop& desktop);
Drawing controlCenterDrawing(StageDesktop& desktop);
Drawing editingDrawing(const StageWindowRecord& window, StageDesktop& desktop);

}  // namespace plemora
