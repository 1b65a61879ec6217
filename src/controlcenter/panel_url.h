#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace plemora {

/// Scheme of the program's URLs.
inline constexpr std::string_view mixerURLScheme = "com.quorvane.mixer";

/// Those arguments of a command line that are meant as URLs of the program, in order.
std::vector<std::string> mixerURLs(std::span<const std::string> arguments);

/// What URLs of the program ask for: to show the mixer panel.
struct PanelRequest {
  bool isFromControlCenter = false;  ///< where the panel is to hang

  bool operator==(const PanelRequest&) const = default;

  /// None unless the host of one of the URLs is "panel". Any of them may say where it comes from
  /// ("?from=control-center").
  static std::optional<PanelRequest> of(std::span<const std::string> urls);
};

}  // namespace plemora
