#pragma once

#include <string_view>

namespace plemora {

/// Icon of a device of which nothing better is known.
inline constexpr std::string_view defaultSymbol = "speaker.wave.2.fill";

}  // namespace plemora
