#pragma once

#include <span>
#include <string_view>

namespace plemora {

/// A style string for a release ("26.4"), or for a release in one appearance ("26.1.light").
struct BuiltInStyle {
  std::string_view key;
  std::string_view style;
};

/// Always holds an entry "26.1".
using BuiltInStyles = std::span<const BuiltInStyle>;

/// Of the overlay over Control Center's module. Fitted to the system's own glass, so the numbers
/// are changed by measuring, never by hand. The margin is left alone from 26.4 on, and only 26.1
/// looks different in light appearance.
extern const BuiltInStyles builtInSkin;

/// Of the detail panel and of the mixer panel.
extern const BuiltInStyles builtInDetail;

}  // namespace plemora
