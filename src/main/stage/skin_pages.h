#pragma once

#include <string>

namespace plemora {

/// Writes pictures that show the module over the program's tiles layer by layer, and beside the
/// system's own, into the folder, with a table "likeness.md" of how far they differ. Throws
/// std::runtime_error when something cannot be written. GUI thread.
void writeSkinPages(const std::string& folder);

}  // namespace plemora
