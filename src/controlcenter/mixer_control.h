#pragma once

#include <string_view>

namespace plemora {

/// Bundle identifier of the extension that declares the program's control.
inline constexpr std::string_view mixerExtensionID = "com.quorvane.mixer.controls";

/// Key of Control Center's controls in its preferences, of any host; the value is JSON.
inline constexpr const char* controlsKey =
    "ControlCenterDisplayableChronoControlsProviderConfiguration";

/// Whether a control with that "ControlIdentity" is the program's: an archive in base64 that names
/// the extension somewhere. It is searched, not unpacked: its form is the system's to change.
bool isMixerControlIdentity(std::string_view identity);

}  // namespace plemora
