#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace plemora {

/// Scheme of the program's URLs.
inline constexpr std::string_view mixerURLScheme = "com.quorvane.mixer";

/// Whether a text, such as an argument of the command line, is meant as a URL of the program.
bool isMixerURL(std::string_view text);

/// What URLs of the program ask for: to show the mixer panel.
struct PanelRequest {
  bool isFromControlCenter = false;  ///< where the panel is to hang

  bool operator==(const PanelRequest&) const = default;

  /// None unless the host of one of the URLs is "panel". Any of them may say where it comes from
  /// ("?from=control-center").
  static std::optional<PanelRequest> of(std::span<const std::string> urls);
};

}  // namespace plemora
