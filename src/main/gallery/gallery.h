#pragma once

#include <string>

namespace plemora {

/// Draws the panel in each of its states over painted wallpapers, with simulated apps and devices,
/// and the windows of setup, and writes the pictures into the folder as PNG files; makes the folder
/// if need be. Needs no
/// display, sound server or bus. Makes the QGuiApplication of the process, which must have none.
/// The exit status: 0, or 1 after a message on standard error.
int renderScreenshots(const std::string& folder);

}  // namespace plemora
