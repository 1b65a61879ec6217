#pragma once

#include <string_view>

namespace plemora {

/// The "ControlIdentity" of the program's control: base64 of the keyed archive (564 bytes) in which
/// the system names a control by its kind, "com.quorvane.mixer.sound", its extension,
/// "com.quorvane.mixer.controls", and the app that holds that, "com.quorvane.mixer". See
/// docs/formats/control-center-layout.md.
inline constexpr std::string_view controlIdentity =
    "YnBsaXN0MDDUAQIDBAUGBwpYJHZlcnNpb25ZJGFyY2hpdmVyVCR0b3BYJG9iamVjdHMSAAGGoF8QD05TS2V5ZWRB"
    "cmNoaXZlctEICVRyb290gAGoCwwVHR4fJidVJG51bGzUDQ4PEBESExRZaW50ZW50UmVmVGtpbmRVZXh0SWRWJGNs"
    "YXNzgACABoACgAfUFhcYEBkaGxxfEBBkZXZpY2VJZGVudGlmaWVyXxAZZXh0ZW5zaW9uQnVuZGxlSWRlbnRpZmll"
    "cl8QGWNvbnRhaW5lckJ1bmRsZUlkZW50aWZpZXKAAIADgASABV8QG2NvbS5xdW9ydmFuZS5taXhlci5jb250cm9s"
    "c18QEmNvbS5xdW9ydmFuZS5taXhlctIgISIjWiRjbGFzc25hbWVYJGNsYXNzZXNfEBRDSFNFeHRlbnNpb25JZGVu"
    "dGl0eaIkJV8QFENIU0V4dGVuc2lvbklkZW50aXR5WE5TT2JqZWN0XxAYY29tLnF1b3J2YW5lLm1peGVyLnNvdW5k"
    "0iAhKClfEBJDSFNDb250cm9sSWRlbnRpdHmiKiVfEBJDSFNDb250cm9sSWRlbnRpdHkACAARABoAJAApADIANwBJ"
    "AEwAUQBTAFwAYgBrAHUAegCAAIcAiQCLAI0AjwCYAKsAxwDjAOUA5wDpAOsBCQEeASMBLgE3AU4BUQFoAXEBjAGR"
    "AaYBqQAAAAAAAAIBAAAAAAAAACsAAAAAAAAAAAAAAAAAAAG+";
}  // namespace plemora
