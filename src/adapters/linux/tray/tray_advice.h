#pragma once

#include <string>

namespace plemora {

/// What the user of a desktop that shows no icons of programs can do, in a sentence or two.
/// desktop: XDG_CURRENT_DESKTOP, names with colons between them; may be empty.
std::string trayAdvice(const std::string& desktop);

}  // namespace plemora
