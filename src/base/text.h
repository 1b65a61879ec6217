#pragma once

#include <string>
#include <string_view>

namespace plemora {

/// Lower case by the rules of the process's locale; bytes that are no valid text stay as they are.
std::string lowercased(std::string_view text);

/// Whether a sorts before b in the process's locale without regard to case. A strict weak order.
bool localizedCaseInsensitiveLess(std::string_view a, std::string_view b);

/// The number with six decimals and a point, whatever the locale.
std::string fixedPoint(double value);

}  // namespace plemora
