#pragma once

#include <string>

namespace plemora {

/// Opens the URL with the program that the desktop has for it, without waiting for it. False when
/// there is none.
bool openWithDesktop(const std::string& url);

}  // namespace plemora
