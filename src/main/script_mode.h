#pragma once

#include <string>

#include "main/script_options.h"

namespace plemora {

/// Does what is asked and returns the line to print: "ok", "primed" or "failed: " and why. Needs
/// no display, sound server or bus. Main thread.
std::string runScript(const ScriptOptions& options);

}  // namespace plemora
