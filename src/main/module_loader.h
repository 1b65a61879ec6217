#pragma once

#include <string>

namespace plemora {

/// The entry of one of the program's modules, such as "plemora-ui", which lie beside the program or
/// where it is installed. The module stays loaded. Null when that fails; the problem says why.
void* loadModule(const std::string& name, const char* entry, std::string& problem);

}  // namespace plemora
